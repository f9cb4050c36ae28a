#include "quick/OSTQuickImagePickerButton.h"

#include "model/OSTValidationItemModel.h"
#include "quick/OSTQuickImage.h"
#include "quick/OSTQuickPictureDialog.h"

namespace ostrel {

OSTQuickImagePickerButton *OSTQuickImagePickerButton::create(const QRect &frame,
                                                             std::shared_ptr<const OSTButtonDescription> description,
                                                             QQuickItem *parent)
{
    if (!description || !description->states())
        return nullptr;
    const bool hasSelector = description->imageSelector().has_value();
    auto *button = new OSTQuickImagePickerButton(frame, std::move(description), parent);
    if (hasSelector) {
        button->m_dialog = new OSTQuickPictureDialog(*button, button);
        connect(button->m_dialog, &OSTQuickPictureDialog::finished, button, &OSTQuickImagePickerButton::handlePickedFile);
    }
    return button;
}

void OSTQuickImagePickerButton::clicked()
{
    OSTQuickButton::clicked();
    if (m_dialog)
        m_dialog->open();
}

void OSTQuickImagePickerButton::handlePickedFile(const QString &path)
{
    handlePickedImage(path.isEmpty() ? QImage() : OSTPictureChoice::readFile(path));
}

void OSTQuickImagePickerButton::handlePickedImage(const QImage &image)
{
    if (m_choice.answer(image))
        pictureChanged();
    m_choice.judge(model().get());
}

void OSTQuickImagePickerButton::pictureChanged()
{
    if (!customImage().isNull() && normalBackground())
        normalBackground()->setImage(customImage());
    updateBackgrounds();
    if (const auto itemModel = model())
        itemModel->valueChanged();
}

void OSTQuickImagePickerButton::updateBackgrounds()
{
    if (customImage().isNull()) {
        OSTQuickButton::updateBackgrounds();
        return;
    }
    // The chosen picture replaces every state's background.
    for (OSTQuickImage *background : {highlightedBackground(), disabledBackground()})
        if (background)
            background->setVisible(false);
    if (normalBackground())
        normalBackground()->setVisible(true);
}

void OSTQuickImagePickerButton::modelDidChange()
{
    m_choice.judge(model().get());
}

QVariant OSTQuickImagePickerButton::value() const
{
    return m_choice.value();
}

void OSTQuickImagePickerButton::setValue(const QVariant &value)
{
    if (!m_choice.restore(value))
        return;
    pictureChanged();
    m_choice.judge(model().get());
}

} // namespace ostrel
