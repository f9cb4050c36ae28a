#pragma once

#include <QImage>
#include <QString>
#include <QVariant>

namespace ostrel {

class OSTValidationItemModel;

// The picture a picture button ("imageUpload") holds, whichever toolkit draws the button: the
// picture the user chose (or a restored one), whether the user has answered the chooser yet, and
// what both make of the button's value and validity. A required button is valid once it holds a
// picture; its error message may show once the user has chosen or cancelled.
//
// A value type owned by its button; GUI thread, like the item model it judges.
class OSTPictureChoice {
public:
    const QImage &image() const { return m_image; }
    // Whether the user has chosen or cancelled at least once.
    bool hasAnswered() const { return m_answered; }

    // Reads a chosen picture file, upright whatever orientation the camera recorded. An
    // unreadable file is logged and reads as a null image.
    static QImage readFile(const QString &path);

    // The user's answer: a null image is a cancelled choice. True when it brought a picture.
    bool answer(const QImage &image);
    // A restored value: true when it was an image, which is then held (even a null one).
    bool restore(const QVariant &value);
    // The picture, null when there is none.
    QVariant value() const;
    // Writes the validity into `model`, when there is one.
    void judge(OSTValidationItemModel *model) const;

private:
    QImage m_image;
    bool m_answered = false;
};

} // namespace ostrel
