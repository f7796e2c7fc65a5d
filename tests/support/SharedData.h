#pragma once

#include <string>

namespace corvane {

// The path of a file of the real test data, which is not part of the sources, or "" where it is not there.
// It is looked for in $CORVANE_TEST_DATA, or in the folder shared/data beside the sources.
std::string SharedData(const std::string& name);

}  // namespace corvane
