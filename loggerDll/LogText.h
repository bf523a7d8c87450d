#pragma once

#include <QByteArray>

#include <string_view>

/// The text itself if it is nothing but printable ASCII, which it mostly is; otherwise null.
std::string_view plainText(const char* text);

/// A text on one line of valid UTF-8: line breaks and other control characters as escapes, invalid
/// bytes as U+FFFD.
QByteArray printableText(const char* text);
