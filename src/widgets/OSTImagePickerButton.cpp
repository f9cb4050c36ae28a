#include "widgets/OSTImagePickerButton.h"

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
    handlePickedImage(path.isEmpty() ? QImage() : OSTPictureChoice::readFile(path));
}

void OSTImagePickerButton::handlePickedImage(const QImage &image)
{
    if (m_choice.answer(image))
        pictureChanged();
    m_choice.judge(model().get());
}

void OSTImagePickerButton::pictureChanged()
{
    if (!customImage().isNull() && normalBackground())
        normalBackground()->setImage(customImage());
    updateBackgrounds();
    if (const auto itemModel = model())
        itemModel->valueChanged();
}

void OSTImagePickerButton::updateBackgrounds()
{
    if (customImage().isNull()) {
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

void OSTImagePickerButton::modelDidChange()
{
    m_choice.judge(model().get());
}

QVariant OSTImagePickerButton::value() const
{
    return m_choice.value();
}

void OSTImagePickerButton::setValue(const QVariant &value)
{
    if (!m_choice.restore(value))
        return;
    pictureChanged();
    m_choice.judge(model().get());
}

} // namespace ostrel
