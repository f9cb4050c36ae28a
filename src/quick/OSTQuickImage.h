#pragma once

#include "quick/OSTQuickElement.h"
#include "paint/OSTImagePainter.h"

#include <QImage>

namespace ostrel {

class OSTImageDescription;
class OSTRemoteImage;

// The "images" element drawn by Qt Quick, and the state backgrounds of buttons: one remote image
// in an element box, placed by the description's content mode or stretched by its cap insets.
// The picture is loaded as OSTRemoteImage does; when all its addresses fail the box stays empty.
// A required image reports, through requiredImageFinished(), when it has finished loading, with
// an image or without.
//
// Lives on the GUI thread; owned by its parent item.
class OSTQuickImage final : public OSTQuickElement {
    Q_OBJECT

public:
    OSTQuickImage(const QRect &frame, const OSTImageDescription &description, QQuickItem *parent);

    const QImage &image() const { return m_imagePainter.image(); }
    void setImage(const QImage &image);
    bool isImageRequired() const;
    // Whether a required image is still being loaded.
    bool isLoadingRequiredImage() const;
    const QList<QUrl> &candidateURLs() const;

signals:
    void requiredImageFinished();

protected:
    void paintContent(QPainter &painter) override;

private:
    void finishLoadingWithImage(const QImage &image);

    OSTRemoteImage *const m_remoteImage; // child
    OSTImagePainter m_imagePainter;
};

} // namespace ostrel
