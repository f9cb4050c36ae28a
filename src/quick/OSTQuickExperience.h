#pragma once

#include <QPointer>
#include <QQuickItem>

namespace ostrel {

class OSTQuickExperienceItem;

// The QML type OstrelExperience (`import Ostrel`): an experience shown where the host's QML places
// it, the Qt Quick counterpart of loading an experience as a widget.
//
//     import Ostrel
//     OstrelExperience { anchors.fill: parent; experienceType: 5; onClosed: visible = false }
//
// Once the item is complete and the SDK has launched, it builds the experience of its type for its
// own size (0, automatic, by default) and fills itself with it; `loaded` then tells whether there
// was one to show. Changing the type builds the new experience in place of the old.
//
// Lives on the GUI thread; made by the QML engine, owns the experience as a child item.
class OSTQuickExperience : public QQuickItem {
    Q_OBJECT
    Q_PROPERTY(int experienceType READ experienceType WRITE setExperienceType NOTIFY experienceTypeChanged)
    Q_PROPERTY(bool loaded READ isLoaded NOTIFY loadedChanged)

public:
    explicit OSTQuickExperience(QQuickItem *parent = nullptr);
    ~OSTQuickExperience() override;

    // Makes `import Ostrel` offer the type in every QML engine of the process.
    static void registerQmlType();

    int experienceType() const { return m_experienceType; }
    void setExperienceType(int type);
    bool isLoaded() const { return !m_experience.isNull(); }
    OSTQuickExperienceItem *experience() const;

Q_SIGNALS:
    void experienceTypeChanged();
    void loadedChanged();
    // The user closed the experience, or its flow ended.
    void closed();

protected:
    void componentComplete() override;
    void geometryChange(const QRectF &newGeometry, const QRectF &oldGeometry) override;

private:
    void load();
    void show(OSTQuickExperienceItem *experience);

    int m_experienceType = 0;
    quint64 m_loadCount = 0; // a load finishing after a newer one started is dropped
    QPointer<OSTQuickExperienceItem> m_experience; // child item
};

} // namespace ostrel
