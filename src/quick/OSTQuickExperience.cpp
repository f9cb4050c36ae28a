#include "quick/OSTQuickExperience.h"

#include "quick/OSTQuickExperienceItem.h"

#include <ostrel/Ostrel.h>

#include <QQmlEngine>

namespace ostrel {

OSTQuickExperience::OSTQuickExperience(QQuickItem *parent) : QQuickItem(parent)
{
    setFlag(ItemIsFocusScope);
}

OSTQuickExperience::~OSTQuickExperience() = default;

void OSTQuickExperience::registerQmlType()
{
    qmlRegisterType<OSTQuickExperience>("Ostrel", 1, 0, "OstrelExperience");
}

OSTQuickExperienceItem *OSTQuickExperience::experience() const
{
    return m_experience.data();
}

void OSTQuickExperience::setExperienceType(int type)
{
    if (type == m_experienceType)
        return;
    m_experienceType = type;
    Q_EMIT experienceTypeChanged();
    if (isComponentComplete())
        load();
}

void OSTQuickExperience::componentComplete()
{
    QQuickItem::componentComplete();
    load();
}

void OSTQuickExperience::load()
{
    const quint64 load = ++m_loadCount;
    Ostrel::executeAfterLaunch([self = QPointer<OSTQuickExperience>(this), load](bool started) {
        if (!self || load != self->m_loadCount)
            return;
        if (!started) {
            self->show(nullptr);
            return;
        }
        OSTQuickExperienceItem::itemWithType(self->m_experienceType, self->size(),
                                             [self, load](OSTQuickExperienceItem *experience) {
                                                 if (self && load == self->m_loadCount)
                                                     self->show(experience);
                                                 else
                                                     delete experience;
                                             });
    });
}

void OSTQuickExperience::show(OSTQuickExperienceItem *experience)
{
    const bool wasLoaded = isLoaded();
    delete m_experience.data();
    m_experience = experience;
    if (experience) {
        experience->setParent(this);
        experience->setParentItem(this);
        experience->setSize(size());
        connect(experience, &OSTQuickExperienceItem::closeRequested, this, &OSTQuickExperience::closed);
        experience->experienceDidAppear();
    }
    if (wasLoaded != isLoaded() || experience)
        Q_EMIT loadedChanged();
}

void OSTQuickExperience::geometryChange(const QRectF &newGeometry, const QRectF &oldGeometry)
{
    QQuickItem::geometryChange(newGeometry, oldGeometry);
    if (m_experience)
        m_experience->setSize(newGeometry.size());
}

} // namespace ostrel
