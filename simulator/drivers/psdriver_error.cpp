#include <psdriver.h>

psdriverError::psdriverError(const std::string& what) : std::runtime_error(what) {}

psdriverError::~psdriverError() = default;
