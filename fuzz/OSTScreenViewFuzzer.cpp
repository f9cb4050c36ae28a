// Arbitrary bytes as the JSON text of a screen, read into a screen document alone, then built into
// a screen view on the offscreen platform.
//
// Checks, besides the sanitizers' own: the document is read exactly when the text is a JSON
// object; each of its layout entries is an element of a laid-out category under its own key and
// its layout table is the one the layout engine builds; the error message has a look while
// showing exactly when it has one; construction ends (no hang) and gives a view exactly when
// the text is a JSON object whose layout resolves; every element view lies inside the screen view
// (a group that contains itself or another group that contains it must not make a loop or a loose
// window); the view survives an error message shown and hidden, a keyboard, a resize with its
// relayout, a paint at ratio 2 and its destruction.

#include "core/OSTLogging.h"
#include "experience/OSTScreen.h"
#include "layout/OSTLayoutManager.h"
#include "platform/OSTClock.h"
#include "platform/OSTManualClock.h"
#include "screen/OSTScreenDocument.h"
#include "screen/OSTScreenVocabulary.h"
#include "widgets/OSTScreenView.h"

#include "OSTScreenDocumentLayoutCheck.h"

#include <QApplication>
#include <QJsonDocument>

#include <cstdint>
#include <cstdio>
#include <cstdlib>

using namespace ostrel;

namespace {

[[noreturn]] void fail(const char *what)
{
    std::fprintf(stderr, "screen view fuzzer: %s\n", what);
    std::abort();
}

std::shared_ptr<OSTManualClock> manualClock;

void checkDocument(const OSTScreenDocument &document)
{
    const auto &entries = document.layoutEntries();
    for (auto entry = entries.constBegin(); entry != entries.constEnd(); ++entry) {
        if (!entry->element || entry->element->key() != entry.key())
            fail("a layout entry under another key than its element's");
        if (entry->group && !entries.contains(*entry->group))
            fail("a layout entry in a group that is not laid out");
    }
    qsizetype laidOut = 0;
    for (const QString &category : OSTScreenVocabulary::laidOutCategoryNames())
        laidOut += document.elements(category).size();
    if (laidOut < entries.size())
        fail("more layout entries than elements");
    if (bool(document.errorMessage()) != bool(document.errorMessageWhileShowing()))
        fail("an error message without its look while showing, or the other way round");
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    static QApplication application(*argc, *argv);
    OSTLogging::setLoggingLevel(OSTLoggingLevelNone);
    manualClock = std::make_shared<OSTManualClock>();
    OSTClock::setCurrent(manualClock);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char *>(data), qsizetype(size));
    const auto screen = std::make_shared<const OSTScreen>(
        QStringLiteral("fuzz"), QVariantMap{{QStringLiteral("json_data"), QString::fromUtf8(bytes)}},
        OSTDocumentOrigin::Local);
    std::unique_ptr<OSTScreenView> view(OSTScreenView::create(screen, QSizeF(375, 667), {}));

    const QJsonDocument document = QJsonDocument::fromJson(QString::fromUtf8(bytes).toUtf8());
    const auto screenDocument = OSTScreenDocument::read(QString::fromUtf8(bytes));
    if (bool(screenDocument) != document.isObject())
        fail("a document exactly from a JSON object");
    if (screenDocument)
        checkDocument(*screenDocument);
    if (!document.isObject()) {
        if (view)
            fail("a view from text that is not a JSON object");
        return 0;
    }
    OSTLayoutManager reference(*screenDocument, QRectF(0, 0, 375, 667), 0);
    if (!ost_layoutTableDifference(*screenDocument, reference).isEmpty())
        fail("a layout engine that does not take the document's layout table");
    if (bool(view) != reference.resolveLayout())
        fail("a view exactly when the layout resolves");
    if (!view)
        return 0;

    for (QWidget *element : view->views()) {
        if (!view->isAncestorOf(element) || element->isWindow())
            fail("an element view outside the screen view");
    }
    view->showErrorMessage(QStringLiteral("Something is missing"), OSTAnimation::Immediate);
    view->keyboardWillShow(216);
    view->resize(500, 400);
    manualClock->advance(OSTScreenView::relayoutInterval);
    view->showErrorMessage(QString(), OSTAnimation::Immediate);
    view->keyboardWillHide();
    const QImage image = view->renderImage(2);
    if (image.size() != QSize(1000, 800))
        fail("a paint of the resized view");
    view.reset();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    QCoreApplication::processEvents();
    return 0;
}
