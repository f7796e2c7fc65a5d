#pragma once

#include <QIcon>
#include <string>

namespace corvane {

// The toolbar's picture for a menu item, drawn here so that it looks right without any icon theme; an empty
// icon for an item that has none.
QIcon ItemIcon(const std::string& itemName);

// The program's own icon: a small triangulated hill.
QIcon ProgramIcon();

}  // namespace corvane
