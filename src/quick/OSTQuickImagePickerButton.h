#pragma once

#include "model/OSTPictureChoice.h"
#include "quick/OSTQuickButton.h"

#include <QImage>

namespace ostrel {

class OSTQuickPictureDialog;

// The "imageUpload" button drawn by Qt Quick: a click opens the picture dialog
// (OSTQuickPictureDialog), and the picture file the user chooses there shows as the button's
// background and is the button's value. The widget button first offers a menu of its image
// selector's entries (photos, cancel); here the click goes straight to the dialog, which has a
// cancel of its own. Without an image selector a click does nothing but the button's tap.
// A required picker is valid once a picture was chosen; its error message may show once the user
// has chosen or cancelled.
//
// Lives on the GUI thread; owned by its parent item; the dialog is its child.
class OSTQuickImagePickerButton final : public OSTQuickButton {
    Q_OBJECT

public:
    // Null without a description or states.
    static OSTQuickImagePickerButton *create(const QRect &frame, std::shared_ptr<const OSTButtonDescription> description,
                                             QQuickItem *parent = nullptr);

    const QImage &customImage() const { return m_choice.image(); }
    // The dialog a click opens, or null without an "imageSelector".
    OSTQuickPictureDialog *pictureDialog() const { return m_dialog; }
    // Reads the chosen file; an empty path is a cancelled choice, an unreadable file is logged
    // and taken as cancelled.
    void handlePickedFile(const QString &path);
    // A null image is a cancelled choice.
    void handlePickedImage(const QImage &image);

    QVariant value() const override;
    void setValue(const QVariant &value) override;
    bool shouldShowErrorMessage() const override { return m_choice.hasAnswered(); }

protected:
    void clicked() override;
    void updateBackgrounds() override;
    void modelDidChange() override;

private:
    using OSTQuickButton::OSTQuickButton;

    // Shows the held picture and reports the new value.
    void pictureChanged();

    OSTQuickPictureDialog *m_dialog = nullptr;
    OSTPictureChoice m_choice;
};

} // namespace ostrel
