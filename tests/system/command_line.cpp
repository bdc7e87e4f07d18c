#include "tests/system/command_line.h"

#include <fcntl.h>
#include <signal.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <system_error>

namespace system_test {
namespace {

int memory_file(const char* name, const std::string& text = {}) {
  const int file = memfd_create(name, MFD_CLOEXEC);
  if (file == -1 || ::write(file, text.data(), text.size()) != static_cast<ssize_t>(text.size())) {
    throw std::system_error(errno, std::generic_category(), name);
  }
  lseek(file, 0, SEEK_SET);
  return file;
}

std::string text_in(int file) {
  std::string text(static_cast<std::size_t>(lseek(file, 0, SEEK_END)), '\0');
  text.resize(static_cast<std::size_t>(std::max<ssize_t>(0, pread(file, text.data(), text.size(), 0))));
  return text;
}

}  // namespace

RuntimeFolder::RuntimeFolder() : path_("/tmp/system-test-XXXXXX") {
  if (mkdtemp(path_.data()) == nullptr) {
    throw std::system_error(errno, std::generic_category(), path_);
  }
  setenv("XDG_RUNTIME_DIR", path_.c_str(), 1);
}

RuntimeFolder::~RuntimeFolder() {
  unsetenv("XDG_RUNTIME_DIR");
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

// The streams are files that the program appends to, so that reading them does not affect it.
OutsideProgram::OutsideProgram(std::vector<std::string> line, const std::string& input,
                               const std::function<void()>& prepare)
    : out_(memory_file("out")), err_(memory_file("err")) {
  const int in = memory_file("in", input);
  for (const int stream : {out_, err_}) {
    fcntl(stream, F_SETFL, O_APPEND);
  }
  std::vector<char*> words;
  for (std::string& word : line) {
    words.push_back(word.data());
  }
  words.push_back(nullptr);
  process_ = fork();
  if (process_ == 0) {
    prctl(PR_SET_PDEATHSIG, SIGKILL);
    ::signal(SIGPIPE, SIG_DFL);
    dup2(in, STDIN_FILENO);
    dup2(out_, STDOUT_FILENO);
    dup2(err_, STDERR_FILENO);
    if (prepare) {
      prepare();
    }
    execv(words[0], words.data());
    _exit(127);
  }
  close(in);
}

OutsideProgram::~OutsideProgram() {
  if (!ended()) {
    kill(SIGKILL);
    waitpid(process_, nullptr, 0);
  }
  close(out_);
  close(err_);
}

bool OutsideProgram::ended() {
  int status = 0;
  if (!ended_ && waitpid(process_, &status, WNOHANG) == process_) {
    ended_ = true;
    if (WIFEXITED(status)) {
      ending_.status = WEXITSTATUS(status);
    } else {
      ending_.signal = WTERMSIG(status);
    }
  }
  return ended_;
}

Ending OutsideProgram::wait() {
  if (!eventually([this] { return ended(); })) {
    throw std::runtime_error("a program does not exit; out \"" + out() + "\", err \"" + err() + "\"");
  }
  ending_.out = out();
  ending_.err = err();
  return ending_;
}

void OutsideProgram::kill(int signal) const {
  if (!ended_) {
    ::kill(process_, signal);
  }
}

std::string OutsideProgram::out() const {
  return text_in(out_);
}

std::string OutsideProgram::err() const {
  return text_in(err_);
}

Ending unit_command(std::vector<std::string> arguments, const std::string& input,
                    const std::function<void()>& prepare) {
  arguments.insert(arguments.begin(), built_program("unit"));
  return OutsideProgram(arguments, input, prepare).wait();
}

std::string built_program(const std::string& name) {
  return std::string(BUILD_FOLDER "/bin/") + name;
}

OutsideFile::OutsideFile(const std::string& text) : path_("/tmp/system-test-XXXXXX") {
  const int file = mkstemp(path_.data());
  if (file == -1 || ::write(file, text.data(), text.size()) != static_cast<ssize_t>(text.size())) {
    throw std::system_error(errno, std::generic_category(), path_);
  }
  close(file);
}

OutsideFile::~OutsideFile() {
  unlink(path_.c_str());
}

OutsideFolder::OutsideFolder() : path_("/tmp/system-test-XXXXXX") {
  if (mkdtemp(path_.data()) == nullptr || chmod(path_.c_str(), 0755) != 0) {
    throw std::system_error(errno, std::generic_category(), path_);
  }
}

OutsideFolder::~OutsideFolder() {
  std::error_code ignored;
  std::filesystem::remove_all(path_, ignored);
}

void OutsideFolder::write(const std::string& name, const std::string& text) const {
  std::ofstream(path_ + "/" + name) << text;
}

}  // namespace system_test
