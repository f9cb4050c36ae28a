#include "quick/OSTQuickImagePickerButton.h"

#include "core/OSTLogging.h"
#include "model/OSTValidationItemModel.h"
#include "quick/OSTQuickImage.h"
#include "quick/OSTQuickPictureDialog.h"

#include <QImageReader>

using namespace Qt::StringLiterals;

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
    if (path.isEmpty()) {
        handlePickedImage(QImage());
        return;
    }
    QImageReader reader(path);
    reader.setAutoTransform(true); // upright, whatever orientation the camera recorded
    const QImage image = reader.read();
    if (image.isNull())
        OSTLogging::logWarning(u"The picture \"%1\" could not be read: %2"_s, path, reader.errorString());
    handlePickedImage(image);
}

void OSTQuickImagePickerButton::handlePickedImage(const QImage &image)
{
    m_shouldShowErrorMessage = true;
    if (!image.isNull()) {
        setCustomImage(image);
        if (const auto itemModel = model())
            itemModel->valueChanged();
    }
    validate();
}

void OSTQuickImagePickerButton::setCustomImage(const QImage &image)
{
    m_customImage = image;
    if (!image.isNull() && normalBackground())
        normalBackground()->setImage(image);
    updateBackgrounds();
}

void OSTQuickImagePickerButton::updateBackgrounds()
{
    if (m_customImage.isNull()) {
        OSTQuickButton::updateBackgrounds();
        return;
    }
    // The chosen picture replaces every state's background.
    if (normalBackground())
        normalBackground()->setVisible(true);
    for (OSTQuickImage *background : {highlightedBackground(), disabledBackground()})
        if (background)
            background->setVisible(false);
    update();
}

void OSTQuickImagePickerButton::validate()
{
    if (const auto itemModel = model())
        itemModel->setValid(itemModel->isOptional() || !m_customImage.isNull());
}

void OSTQuickImagePickerButton::modelDidChange()
{
    validate();
}

QVariant OSTQuickImagePickerButton::value() const
{
    return m_customImage.isNull() ? QVariant() : QVariant(m_customImage);
}

void OSTQuickImagePickerButton::setValue(const QVariant &value)
{
    if (value.typeId() != QMetaType::QImage)
        return;
    setCustomImage(value.value<QImage>());
    if (const auto itemModel = model())
        itemModel->valueChanged();
    validate();
}

} // namespace ostrel
