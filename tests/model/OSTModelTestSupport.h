#pragma once

// The presentation model's views, scripted: no widgets, every call recorded.

#include "experience/OSTScreen.h"
#include "model/OSTExperienceView.h"
#include "model/OSTScreenModel.h"
#include "model/OSTScreenModelView.h"
#include "model/OSTValidationItem.h"
#include "model/OSTValidationItemModel.h"
#include "screen/OSTScreenDocument.h"

#include <QStringList>

#include <memory>
#include <string>
#include <vector>

namespace ostrel::test {

using namespace Qt::StringLiterals;

// An input that judges itself valid when it holds a value, as a required text field does.
class ScriptedInput final : public OSTValidationItem {
public:
    void type(const QString &text)
    {
        m_value = text;
        model()->setValid(!text.isEmpty());
        model()->valueChanged();
    }
    QVariant value() const override { return m_value; }
    void setValue(const QVariant &value) override { m_value = value; }
    bool shouldShowErrorMessage() const override { return true; }

private:
    QVariant m_value;
};

// A screen drawn by nothing: an input per entry of its JSON's "inputs". Owns its model.
class ScriptedScreen final : public OSTScreenModelView {
public:
    ScriptedScreen(const std::shared_ptr<const OSTScreen> &screen, const OSTScreenModel::Environment &environment)
        : m_document(OSTScreenDocument::read(screen->json())),
          model(std::make_unique<OSTScreenModel>(screen, environment))
    {
        for (const auto &input : m_document->elements(u"inputs"_s))
            m_items.insert(input->key(), m_inputs.emplace_back(std::make_unique<ScriptedInput>()).get());
        model->setView(*this);
    }

    const OSTScreenDocument &screenDocument() const override { return *m_document; }
    ValidationItems validationItems() const override { return m_items; }
    bool isFullyLoaded() const override { return fullyLoaded; }
    void setNextButtonsEnabled(bool enabled) override { nextEnabled = enabled; }
    void showErrorMessage(const QString &message) override { errorMessage = message; }
    void showLoadingOverlay() override { overlays << u"on"_s; }
    void hideLoadingOverlay() override { overlays << u"off"_s; }

    ScriptedInput &input(const QString &key) { return *static_cast<ScriptedInput *>(m_items.value(key)); }

    bool fullyLoaded = true;
    bool nextEnabled = false;
    QString errorMessage;
    QStringList overlays;

private:
    const std::shared_ptr<const OSTScreenDocument> m_document;
    std::vector<std::unique_ptr<ScriptedInput>> m_inputs;
    ValidationItems m_items;

public:
    const std::unique_ptr<OSTScreenModel> model; // declared last: it goes before its view
};

// An experience drawn by nothing. It records "push key", "pop", "pop to key", "dismiss" and each
// change of the overlay ("overlay on/off"); it cannot make the screens named in `unbuildable`;
// it keeps every screen it made.
class ScriptedExperienceView final : public OSTExperienceView {
public:
    ScriptedScreen &screenOf(const OSTScreenModel *model)
    {
        return **std::ranges::find_if(m_screens, [model](const auto &screen) { return screen->model.get() == model; });
    }
    // The calls since they were last taken, comma-separated.
    std::string takeCalls() { return std::exchange(m_calls, {}).join(u", "_s).toStdString(); }

    OSTScreenModel *makeScreen(const std::shared_ptr<const OSTScreen> &screen) override
    {
        if (unbuildable.contains(screen->key()))
            return nullptr;
        return m_screens.emplace_back(std::make_unique<ScriptedScreen>(screen, OSTScreenModel::Environment()))->model.get();
    }
    void pushScreen(OSTScreenModel &screen) override { m_calls << u"push "_s + screen.screen()->key(); }
    void popScreen() override { m_calls << u"pop"_s; }
    void popToScreen(OSTScreenModel &screen) override { m_calls << u"pop to "_s + screen.screen()->key(); }
    void showLoadingOverlay() override { showOverlay(true); }
    void hideLoadingOverlay() override { showOverlay(false); }
    void dismiss() override { m_calls << u"dismiss"_s; }

    QStringList unbuildable;

private:
    void showOverlay(bool shown)
    {
        if (shown != m_overlayShown)
            m_calls << (shown ? u"overlay on"_s : u"overlay off"_s);
        m_overlayShown = shown;
    }

    std::vector<std::unique_ptr<ScriptedScreen>> m_screens;
    QStringList m_calls;
    bool m_overlayShown = false;
};

} // namespace ostrel::test
