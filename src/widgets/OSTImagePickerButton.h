#pragma once

#include "model/OSTPictureChoice.h"
#include "widgets/OSTButton.h"

#include <QImage>

#include <functional>

class QMenu;

namespace ostrel {

// The "imageUpload" button: pressing it offers a small menu built from its description's image
// selector, and the picture file the user then chooses shows as the button's background and is
// the button's value. The menu holds the photos entry, which opens the file chooser, and the
// cancel entry; "cameraText" would title a camera entry, and the SDK has no camera source on a
// desktop, so it has none. Without an image selector there is no menu and a press does nothing.
// A required picker is valid once a picture was chosen; its error message may show once the user
// has chosen or cancelled.
//
// Lives on the GUI thread; owned by its parent widget.
class OSTImagePickerButton final : public OSTButton {
    Q_OBJECT

public:
    // Asks the user for a picture file; an empty path means cancelled. Replaceable so that hosts
    // can bring their own picker and tests can answer without a dialog.
    using FileChooser = std::function<QString(QWidget *parent)>;

    // Null without a description or states.
    static OSTImagePickerButton *create(const QRect &frame, std::shared_ptr<const OSTButtonDescription> description,
                                        QWidget *parent = nullptr);

    static void setFileChooser(FileChooser chooser);

    const QImage &customImage() const { return m_choice.image(); }
    // The menu a press opens, or null without an "imageSelector".
    QMenu *menu() const { return m_menu; }
    // Opens the chooser and takes its answer (what the menu's picture entry does).
    void choosePicture();
    // A null image is a cancelled choice.
    void handlePickedImage(const QImage &image);

    QVariant value() const override;
    void setValue(const QVariant &value) override;
    bool shouldShowErrorMessage() const override { return m_choice.hasAnswered(); }

protected:
    void updateBackgrounds() override;
    void modelDidChange() override;

private:
    using OSTButton::OSTButton;

    void prepareMenu(const OSTButtonDescription::ImageSelector &selector);
    void showMenu();
    // Shows the held picture and reports the new value.
    void pictureChanged();

    QMenu *m_menu = nullptr; // child of the button
    OSTPictureChoice m_choice;
};

} // namespace ostrel
