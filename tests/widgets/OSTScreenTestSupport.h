#pragma once

// Screens built from JSON text and a delegate that records what a screen view tells it.

#include "experience/OSTAction.h"
#include "experience/OSTScreen.h"
#include "widgets/OSTButton.h"
#include "widgets/OSTScreenView.h"
#include "widgets/OSTScreenViewDelegate.h"

#include <QString>
#include <QStringList>

#include <gtest/gtest.h>

#include <memory>

namespace ostrel::test {

using namespace Qt::StringLiterals;

inline std::shared_ptr<const OSTScreen> screenWithJson(const QString &json, const QString &key = u"welcome"_s)
{
    return std::make_shared<const OSTScreen>(key, QVariantMap{{u"json_data"_s, json}, {u"experience_name"_s, u"Welcome"_s}}, OSTDocumentOrigin::Server);
}

inline std::unique_ptr<OSTScreenView> screenView(const QString &json, QSizeF area = {375, 667},
                                                 OSTScreenView::Substitution substitution = {})
{
    return std::unique_ptr<OSTScreenView>(OSTScreenView::create(screenWithJson(json), area, substitution));
}

class RecordingScreenViewDelegate final : public OSTScreenViewDelegate {
public:
    void screenViewDidTapScreen(OSTScreenView &) override { calls << u"tap"_s; }
    void screenViewDidPressButton(OSTScreenView &, OSTButton &button) override
    {
        calls << u"press "_s + button.name();
    }
    void screenViewShouldGoToNextScreen(OSTScreenView &) override { calls << u"next"_s; }
    void screenViewShouldHandleAction(OSTScreenView &, const std::shared_ptr<const OSTAction> &action) override
    {
        calls << u"action "_s + (action ? action->name() : QString());
    }
    void screenViewDidFinishLoadingRequiredImages(OSTScreenView &) override { calls << u"images"_s; }

    QStringList calls;
};

} // namespace ostrel::test
