#pragma once

#include <QMargins>
#include <QVariantMap>

#include <optional>

namespace ostrel {

// The insets under `key` when it holds a list of exactly four numbers (top, left, bottom,
// right, each taken as an integer); nothing otherwise. Text fields and pickers inset their text
// by them.
std::optional<QMargins> ost_contentInsetsForKey(const QVariantMap &properties, const QString &key);

} // namespace ostrel
