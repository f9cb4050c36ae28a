#pragma once

#include "model/OSTRemoteImage.h"
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
// The picture is loaded as OSTRemoteImage does; when all its addresses fail the box stays empty. A required image reports, through requiredImageFinished(),
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
    bool isImageRequired() const { return m_remoteImage->isRequired(); }
    // Whether a required image is still being loaded; a screen that attaches after construction
    // counts the image as pending only then.
    bool isLoadingRequiredImage() const { return isImageRequired() && m_remoteImage->isLoading(); }
    // The addresses this view tries, in order.
    const QList<QUrl> &candidateURLs() const { return m_remoteImage->candidateURLs(); }

signals:
    void requiredImageFinished();

private:
    void finishLoadingWithImage(const QImage &image);

    OSTImageDisplay *const m_display;     // child of the container
    OSTRemoteImage *const m_remoteImage; // child
};

} // namespace ostrel
