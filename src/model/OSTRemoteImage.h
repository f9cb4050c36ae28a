#pragma once

#include <QImage>
#include <QList>
#include <QObject>
#include <QUrl>

namespace ostrel {

struct OSTImageSource;

// The picture of an element's image source, whatever draws it: the candidate addresses the source
// names (with the current user's property when it names one) loaded in order through the image
// manager until one gives an image. When all fail the result is the null image.
//
// Lives on the GUI thread; owned (Qt parent) by the view or item that shows the picture. A load
// whose owner is gone by the time the image manager answers is dropped.
class OSTRemoteImage final : public QObject {
    Q_OBJECT

public:
    OSTRemoteImage(const OSTImageSource &source, QObject *parent);

    // The addresses tried, in order.
    const QList<QUrl> &candidateURLs() const { return m_candidates; }
    bool isRequired() const { return m_required; }
    bool isLoading() const { return m_loading; }
    // Whether a load gave an image.
    bool hasArrived() const { return m_arrived; }
    // Starts loading; finished() may come before this returns, when the image is at hand.
    void load();

signals:
    void finished(const QImage &image);

private:
    void loadCandidate(qsizetype index);
    void finish(const QImage &image);

    const QList<QUrl> m_candidates;
    const bool m_required;
    bool m_loading = false;
    bool m_arrived = false;
};

} // namespace ostrel
