#include "model/OSTPictureChoice.h"

#include "core/OSTLogging.h"
#include "model/OSTValidationItemModel.h"

#include <QImageReader>

using namespace Qt::StringLiterals;

namespace ostrel {

QImage OSTPictureChoice::readFile(const QString &path)
{
    QImageReader reader(path);
    reader.setAutoTransform(true);
    const QImage image = reader.read();
    if (image.isNull())
        OSTLogging::logWarning(u"The picture \"%1\" could not be read: %2"_s, path, reader.errorString());
    return image;
}

bool OSTPictureChoice::answer(const QImage &image)
{
    m_answered = true;
    if (image.isNull())
        return false;
    m_image = image;
    return true;
}

bool OSTPictureChoice::restore(const QVariant &value)
{
    if (value.typeId() != QMetaType::QImage)
        return false;
    m_image = value.value<QImage>();
    return true;
}

QVariant OSTPictureChoice::value() const
{
    return m_image.isNull() ? QVariant() : QVariant(m_image);
}

void OSTPictureChoice::judge(OSTValidationItemModel *model) const
{
    if (model)
        model->setValid(model->isOptional() || !m_image.isNull());
}

} // namespace ostrel
