#pragma once

#include <QMargins>
#include <QVariantMap>

#include <optional>

namespace ostrel {

// The insets under "contentInsets" when it holds a list of exactly four numbers (top, left, bottom,
// right, each taken as an integer); nothing otherwise. Text fields and pickers inset their text
// by them.
std::optional<QMargins> ost_contentInsetsOf(const QVariantMap &properties);

} // namespace ostrel
