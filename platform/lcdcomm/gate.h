// What keeps texts from the plug-in that its reader could not finish.
#pragma once

#include <cstddef>
#include <string>

namespace lcdcomm {

/// Most levels of nesting that a gate can be told to let pass.
inline constexpr std::size_t kDeepestGate = 1024;

/// Whether a text is exactly one JSON value to the plug-in's reader: every token, separator and bracket in its place,
/// arrays and objects at most `deepest` levels deep, nothing but white space behind. What that reader tolerates passes,
/// too: bare words, numbers as keys, line comments, a comma behind an array's last element. Takes steps linear in the
/// text and no memory for a text that passes. Any thread.
bool passesGate(const std::string& text, std::size_t deepest);

}  // namespace lcdcomm
