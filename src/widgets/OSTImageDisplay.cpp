#include "widgets/OSTImageDisplay.h"

#include <QAccessible>
#include <QAccessibleWidget>
#include <QPainter>

#include <mutex>

using namespace Qt::StringLiterals;

namespace ostrel {

namespace {

QAccessibleInterface *accessibleImage(const QString &className, QObject *object)
{
    if (className == u"ostrel::OSTImageDisplay"_s && object && object->isWidgetType())
        return new QAccessibleWidget(static_cast<QWidget *>(object), QAccessible::Graphic);
    return nullptr;
}

} // namespace

OSTImageDisplay::OSTImageDisplay(QWidget *parent) : QWidget(parent)
{
    static std::once_flag accessibility;
    std::call_once(accessibility, [] { QAccessible::installFactory(accessibleImage); });
    setAttribute(Qt::WA_TransparentForMouseEvents);
    setAttribute(Qt::WA_NoSystemBackground);
}

void OSTImageDisplay::setImage(const QImage &image)
{
    m_imagePainter.setImage(image);
    update();
}

void OSTImageDisplay::setContentMode(UIViewContentMode mode)
{
    m_imagePainter.setContentMode(mode);
    update();
}

void OSTImageDisplay::setCapInsets(const std::optional<QMargins> &insets)
{
    m_imagePainter.setCapInsets(insets);
    update();
}

void OSTImageDisplay::paintEvent(QPaintEvent *)
{
    QPainter painter(this);
    m_imagePainter.paint(painter, size());
}

} // namespace ostrel
