#include "EventPanel.h"

#include "EventDetails.h"

#include <ostrel/OSTConstants.h>
#include <ostrel/OSTNotificationObservers.h>

#include <QHeaderView>
#include <QTime>
#include <QTreeWidget>
#include <QVBoxLayout>

using namespace Qt::StringLiterals;

namespace ostrel::demo {

EventPanel::EventPanel(QWidget *parent)
    : QWidget(parent), m_list(new QTreeWidget(this))
{
    setWindowTitle(u"Ostrel events"_s);
    m_list->setHeaderLabels({u"Time"_s, u"Event"_s, u"Type"_s, u"Details"_s});
    m_list->setRootIsDecorated(false);
    m_list->setAlternatingRowColors(true);
    m_list->header()->setSectionResizeMode(QHeaderView::ResizeToContents);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->addWidget(m_list);
    resize(640, 667);

    m_observer = OSTNotificationObservers::addObserver(
        OSTEventFiredNotification, this, [this](const QString &, const QVariantMap &event) {
            addEvent(event.value(OSTEventNotificationNameKey).toString(),
                     event.value(OSTEventNotificationParametersKey).toMap(),
                     event.value(OSTEventNotificationTypeKey).toString());
        });
}

EventPanel::~EventPanel()
{
    OSTNotificationObservers::removeObserver(m_observer);
}

void EventPanel::addEvent(const QString &name, const QVariantMap &parameters, const QString &type)
{
    auto *row = new QTreeWidgetItem(m_list, {QTime::currentTime().toString(u"HH:mm:ss.zzz"_s), name, type,
                                             EventDetails::of(parameters)});
    m_list->scrollToItem(row);
}

} // namespace ostrel::demo
