#include "simulator/model/unit_model.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstdlib>
#include <filesystem>
#include <mutex>
#include <new>
#include <stdexcept>
#include <system_error>
#include <thread>

namespace simulator::model {
namespace {

namespace fs = std::filesystem;

[[noreturn]] void refuse(const std::string& path) {
  throw std::system_error(errno, std::generic_category(), path);
}

/// An open file that closes itself.
struct OpenFile {
  OpenFile(const std::string& path, int flags) : descriptor(::open(path.c_str(), flags | O_CLOEXEC, 0644)) {
    if (descriptor < 0) {
      refuse(path);
    }
  }
  ~OpenFile() { ::close(descriptor); }
  OpenFile(const OpenFile&) = delete;
  OpenFile& operator=(const OpenFile&) = delete;

  const int descriptor;
};

std::string run_folder_of(const std::string& path) {
  return fs::absolute(path).lexically_normal().parent_path().string();
}

/// The folder that the unit of this run folder sees as its root.
fs::path root_of(const fs::path& run_folder) {
  const bool in_state_folder = run_folder.filename() == "unit" && run_folder.parent_path().filename() == "run";
  return in_state_folder ? run_folder.parent_path().parent_path() : run_folder;
}

std::string path_of_this_unit() {
  const char* run = std::getenv("UNIT_RUN");
  return std::string(run != nullptr ? run : "/run/unit") + "/model";
}

}  // namespace

UnitModel::UnitModel(const std::string& path, Shared* shared)
    : shared_(shared),
      run_folder_(run_folder_of(path)),
      record_(run_folder_ + "/calls.jsonl", shared->faults.watch()),
      files_(root_of(run_folder_) / "sys", root_of(run_folder_) / "tmp", shared->faults, shared->kept_texts) {}

UnitModel::~UnitModel() {
  ::munmap(shared_, sizeof(Shared));
}

void* UnitModel::map(int descriptor, const std::string& path) {
  void* mapped = ::mmap(nullptr, sizeof(Shared), PROT_READ | PROT_WRITE, MAP_SHARED, descriptor, 0);
  if (mapped == MAP_FAILED) {
    refuse(path);
  }
  return mapped;
}

void UnitModel::prepare(const std::string& path, const Fill& fill) {
  const OpenFile file(path, O_RDWR | O_CREAT | O_TRUNC);
  if (::ftruncate(file.descriptor, sizeof(Shared)) != 0) {
    refuse(path);
  }
  UnitModel unit(path, new (map(file.descriptor, path)) Shared);
  for (const SysfsFile& each : sysfs_files()) {
    unit.files().set_text(each, std::nullopt);
  }
  if (fill) {
    fill(unit);
  }
}

UnitModel UnitModel::create(const std::string& path, const Fill& fill) {
  fs::create_directories(run_folder_of(path));
  const std::string fresh = path + ".new." + std::to_string(::getpid());
  prepare(fresh, fill);
  fs::rename(fresh, path);
  return open(path);
}

UnitModel UnitModel::open(const std::string& path) {
  const OpenFile file(path, O_RDWR);
  struct stat status {};
  if (::fstat(file.descriptor, &status) != 0) {
    refuse(path);
  }
  if (status.st_size != static_cast<off_t>(sizeof(Shared))) {
    throw std::runtime_error(path + ": not a unit model of this version");
  }
  auto* shared = std::launder(static_cast<Shared*>(map(file.descriptor, path)));
  if (shared->magic != Shared::MAGIC || shared->version != Shared::VERSION || shared->size != sizeof(Shared)) {
    ::munmap(shared, sizeof(Shared));
    throw std::runtime_error(path + ": not a unit model of this version");
  }
  return UnitModel(path, shared);
}

UnitModel& UnitModel::of_this_unit() {
  static std::mutex opening;
  static std::atomic<UnitModel*> unit{nullptr};
  if (UnitModel* opened = unit.load(std::memory_order_acquire)) {
    return *opened;
  }
  const std::lock_guard guard(opening);
  if (unit.load() == nullptr) {
    unit.store(new UnitModel(open(path_of_this_unit())));
  }
  return *unit.load();
}

Fault UnitModel::cross(Point point, const std::string& args) {
  const Fault fault = crossings().strike(point);
  record_.append(point, args);
  if (fault.kind == FaultKind::SLOW) {
    std::this_thread::sleep_for(std::chrono::milliseconds(fault.value));
  }
  return fault;
}

}  // namespace simulator::model
