#pragma once

#include "screen/OSTImageDescription.h"
#include "widgets/OSTView.h"

#include <QImage>
#include <QList>
#include <QUrl>

namespace ostrel {

class OSTImageDisplay;

// The "images" element, and the state backgrounds of buttons: one remote image in an element box,
// as its image description gives it (OSTImageSource: the addresses, whether the screen waits for
// it, the cap insets that stretch only the middle and how it fills the box), named for assistive
// technology by the description's accessibility label.
//
// The candidate addresses are loaded in order through the image manager until one gives an image;
// when all fail the box stays empty. A required image reports, through requiredImageFinished(),
// when it has finished loading, with an image or without.
//
// Lives on the GUI thread; owned by its parent widget.
class OSTImageView : public OSTView {
    Q_OBJECT

public:
    OSTImageView(const QRect &frame, const OSTImageDescription &description, QWidget *parent = nullptr);

    // Restyles the box and how the image fills it; the image and its addresses stay.
    void customize(const OSTImageDescription &description);

    QImage image() const;
    void setImage(const QImage &image);
    bool isImageRequired() const { return m_imageRequired; }
    // Whether a required image is still being loaded; a screen that attaches after construction
    // counts the image as pending only then.
    bool isLoadingRequiredImage() const { return m_imageRequired && m_loading; }
    // The addresses this view tries, in order.
    const QList<QUrl> &candidateURLs() const { return m_candidates; }

    // The candidate addresses the properties name, in the order they are tried: the address the
    // user property named by "{name}" holds (taken from `userProperties`), the image or its
    // placeholder, the backup.

signals:
    void requiredImageFinished();

private:
    void loadNextCandidate(qsizetype index);
    void finishLoadingWithImage(const QImage &image);

    OSTImageDisplay *const m_display; // child of the container
    QList<QUrl> m_candidates;
    bool m_imageRequired = false;
    bool m_loading = false;
};

} // namespace ostrel
