#pragma once

#include <string>

namespace corvane {

// Where an output file goes.

// The file that a path leads to, behind symbolic links, whether there is one yet or not.
std::string ResolvedTarget(const std::string& path);

// The folder of a file; "." of a name alone.
std::string FolderOf(const std::string& path);

}  // namespace corvane
