#pragma once

#include <cstddef>
#include <cstdint>
#include <string>

namespace corvane {

// A path in a folder of this process's own, which is removed at its end.
std::string FuzzPath(const std::string& name);

// Makes a file of these bytes and returns its path.
std::string FuzzFile(const std::string& name, const std::uint8_t* data, std::size_t size);

}  // namespace corvane
