#pragma once

#include "input/OSTButton.h"

#include <QImage>

#include <functional>

namespace ostrel {

// The "imageUpload" button: pressing it lets the user choose a picture file, which then shows as
// the button's background and is the button's value. Desktops have no camera source, so the
// choice goes straight to the files; "imageSelector" titles for a camera or a choice sheet have
// nothing to label here. A required picker is valid once a picture was chosen; its error message
// may show once the user has chosen or cancelled.
//
// Lives on the GUI thread; owned by its parent widget.
class OSTImagePickerButton final : public OSTButton {
    Q_OBJECT

public:
    // Asks the user for a picture file; an empty path means cancelled. Replaceable so that hosts
    // can bring their own picker and tests can answer without a dialog.
    using FileChooser = std::function<QString(QWidget *parent)>;

    static OSTImagePickerButton *create(const QRect &frame, const QVariantMap &properties,
                                        const QString &name, QWidget *parent = nullptr);

    static void setFileChooser(FileChooser chooser);

    const QImage &customImage() const { return m_customImage; }
    // Opens the chooser and takes its answer (what a press does).
    void choosePicture();
    // A null image is a cancelled choice.
    void handlePickedImage(const QImage &image);

    QVariant value() const override;
    void setValue(const QVariant &value) override;
    bool shouldShowErrorMessage() const override { return m_shouldShowErrorMessage; }

protected:
    void updateBackgrounds() override;
    void modelDidChange() override;

private:
    using OSTButton::OSTButton;

    void setCustomImage(const QImage &image);
    void validate();

    QImage m_customImage;
    bool m_shouldShowErrorMessage = false;
};

} // namespace ostrel
