#include "widgets/OSTImagePickerButton.h"

#include "core/OSTLogging.h"
#include "model/OSTValidationItemModel.h"
#include "widgets/OSTImageView.h"

#include <QFileDialog>
#include <QImageReader>
#include <QMenu>

using namespace Qt::StringLiterals;

namespace ostrel {

namespace {

QString chooseWithDialog(QWidget *parent)
{
    QStringList patterns;
    for (const QByteArray &format : QImageReader::supportedImageFormats())
        patterns.append(u"*."_s + QString::fromLatin1(format));
    return QFileDialog::getOpenFileName(parent, QFileDialog::tr("Choose a picture"), QString(),
                                        QFileDialog::tr("Images (%1)").arg(patterns.join(u' ')));
}

OSTImagePickerButton::FileChooser &fileChooser()
{
    static OSTImagePickerButton::FileChooser chooser = chooseWithDialog;
    return chooser;
}

} // namespace

OSTImagePickerButton *OSTImagePickerButton::create(const QRect &frame,
                                                   std::shared_ptr<const OSTButtonDescription> description,
                                                   QWidget *parent)
{
    if (!description || !description->states())
        return nullptr;
    const std::optional<OSTButtonDescription::ImageSelector> selector = description->imageSelector();
    auto *button = new OSTImagePickerButton(frame, std::move(description), parent);
    if (selector)
        button->prepareMenu(*selector);
    return button;
}

void OSTImagePickerButton::setFileChooser(FileChooser chooser)
{
    fileChooser() = chooser ? std::move(chooser) : FileChooser(chooseWithDialog);
}

void OSTImagePickerButton::prepareMenu(const OSTButtonDescription::ImageSelector &selector)
{
    m_menu = new QMenu(this);
    const QAction *photos = m_menu->addAction(selector.photosText);
    const QAction *cancel = m_menu->addAction(selector.cancelText);
    // Queued: the file dialog opens once the menu has closed.
    connect(photos, &QAction::triggered, this, &OSTImagePickerButton::choosePicture, Qt::QueuedConnection);
    connect(cancel, &QAction::triggered, this, [this] { handlePickedImage(QImage()); });
    connect(this, &OSTButton::tapped, this, &OSTImagePickerButton::showMenu);
}

void OSTImagePickerButton::showMenu()
{
    m_menu->popup(mapToGlobal(rect().bottomLeft()));
}

void OSTImagePickerButton::choosePicture()
{
    const QString path = fileChooser()(window());
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

void OSTImagePickerButton::handlePickedImage(const QImage &image)
{
    m_shouldShowErrorMessage = true;
    if (!image.isNull()) {
        setCustomImage(image);
        if (const auto itemModel = model())
            itemModel->valueChanged();
    }
    validate();
}

void OSTImagePickerButton::setCustomImage(const QImage &image)
{
    m_customImage = image;
    if (!image.isNull() && normalBackground())
        normalBackground()->setImage(image);
    updateBackgrounds();
}

void OSTImagePickerButton::updateBackgrounds()
{
    if (m_customImage.isNull()) {
        OSTButton::updateBackgrounds();
        return;
    }
    // The chosen picture replaces every state's background.
    if (normalBackground())
        normalBackground()->setVisible(true);
    for (OSTImageView *background : {highlightedBackground(), disabledBackground()})
        if (background)
            background->setVisible(false);
    update();
}

void OSTImagePickerButton::validate()
{
    if (const auto itemModel = model())
        itemModel->setValid(itemModel->isOptional() || !m_customImage.isNull());
}

void OSTImagePickerButton::modelDidChange()
{
    validate();
}

QVariant OSTImagePickerButton::value() const
{
    return m_customImage.isNull() ? QVariant() : QVariant(m_customImage);
}

void OSTImagePickerButton::setValue(const QVariant &value)
{
    if (value.typeId() != QMetaType::QImage)
        return;
    setCustomImage(value.value<QImage>());
    if (const auto itemModel = model())
        itemModel->valueChanged();
    validate();
}

} // namespace ostrel
