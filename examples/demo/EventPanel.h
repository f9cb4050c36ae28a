#pragma once

#include <QWidget>

#include <cstdint>

class QTreeWidget;

namespace ostrel::demo {

// A window listing the SDK's events as they fire (OSTEventFiredNotification): time, wire name,
// type and the parameters that tell them apart; the newest at the bottom.
//
// Lives on the GUI thread; observes the notification from construction to destruction.
class EventPanel : public QWidget {
    Q_OBJECT

public:
    explicit EventPanel(QWidget *parent = nullptr);
    ~EventPanel() override;

private:
    void addEvent(const QString &name, const QVariantMap &parameters, const QString &type);

    QTreeWidget *m_list; // child
    std::uint64_t m_observer = 0;
};

} // namespace ostrel::demo
