#pragma once

#include "screen/OSTTextFieldDescription.h"

#include <QFont>
#include <QString>
#include <Qt>

namespace ostrel {

// Where a text field's single line goes and at which size, whichever toolkit draws the field:
// the alignment its description gives, the alignment of an alignment word of a state, and the
// font shrunk, no further than the minimum font size, while the text is wider than the field,
// when the description asks for it.
//
// Stateless; GUI thread (fonts).
class OSTTextFieldLayout {
public:
    OSTTextFieldLayout() = delete;

    // The field's own alignment: "horizontalAlignment" or its alignment word (left otherwise;
    // a single line has nothing to fill, so "fill" starts at the left too) and the vertical
    // alignment (centred otherwise).
    static Qt::Alignment fieldAlignment(const OSTTextFieldDescription &description);
    // The horizontal alignment an alignment word ("center", "right", ...) stands for.
    static Qt::Alignment horizontalAlignmentOfWord(const QString &word);
    // `font`, or a smaller one so that `shownText` fits `availableWidth` when the description
    // adjusts the font size to the width.
    static QFont fittedFont(const OSTTextFieldDescription &description, const QFont &font, const QString &shownText,
                            qreal availableWidth);
};

} // namespace ostrel
