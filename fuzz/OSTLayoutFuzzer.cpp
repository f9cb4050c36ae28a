// Arbitrary bytes as the screen JSON of the layout engine, read into a screen document first.
//
// Checks, besides the sanitizers' own: resolution ends (no hang) and its result agrees with
// the elements' state; every attribute is resolved exactly when ICU's reading of the numeric
// pattern says so; and the manager's strings and result equal those of the
// straightforward full-pass resolution that the tests use (when that one finishes within its
// limits: it runs the screen format's nested reference pattern, which backtracks
// exponentially on some inputs). Bytes that are not a JSON object are used as the four
// formulas of one element, so that every input exercises resolution.

#include "OSTLayoutReferenceResolution.h"

#include "core/OSTLogging.h"
#include "layout/OSTLayoutManager.h"
#include "screen/OSTScreenDocument.h"

#include <QGuiApplication>
#include <QJsonDocument>
#include <QRectF>

#include <cstdint>
#include <cstdio>
#include <cstdlib>

using namespace ostrel;

namespace {

[[noreturn]] void fail(const char *what, const QString &detail)
{
    std::fprintf(stderr, "layout fuzzer: %s: %s\n", what,
                 detail.left(2000).toLocal8Bit().constData());
    std::abort();
}

} // namespace

extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv)
{
    // The screen document resolves the fonts of its texts, which takes a GUI application.
    qputenv("QT_QPA_PLATFORM", "offscreen");
    static QGuiApplication application(*argc, *argv);
    OSTLogging::setLoggingLevel(OSTLoggingLevelNone);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char *>(data), qsizetype(size));
    const QJsonDocument document = QJsonDocument::fromJson(bytes);
    QVariantMap screen;
    if (document.isObject()) {
        screen = document.toVariant().toMap();
    } else {
        const QString text = QString::fromUtf8(bytes);
        screen.insert(QStringLiteral("shapes"),
                      QVariantMap{{QStringLiteral("a"),
                                   QVariantMap{{QStringLiteral("x"), text},
                                               {QStringLiteral("y"), text},
                                               {QStringLiteral("width"), text},
                                               {QStringLiteral("height"), text}}}});
    }

    constexpr double statusBar = 20;
    const auto screenDocument = OSTScreenDocument::fromLayout(screen);
    OSTLayoutManager manager(*screenDocument, QRectF(0, 0, 375, 667), statusBar);

    // As the screen view does for its error message.
    if (const auto &message = screenDocument->errorMessageWhileShowing())
        manager.updateLayout(message->frame(), message->key());

    test::OSTLayoutReferenceResolution reference(manager, statusBar);
    reference.setLimits(20000, 2);

    const bool resolved = manager.resolveLayout();

    bool allResolved = true;
    for (auto entry = manager.elements().constBegin(); entry != manager.elements().constEnd();
         ++entry) {
        const OSTLayoutElement &element = *entry.value();
        allResolved = allResolved && element.isResolved();
        for (int index = 0; index < OSTLayoutElement::attributeCount; ++index) {
            const auto attribute = OSTLayoutElement::Attribute(index);
            if (!element.hasAttribute(attribute))
                continue;
            if (element.isAttributeResolved(attribute)
                != reference.isNumeric(element.value(attribute)))
                fail("numeric predicate disagrees with ICU", element.value(attribute));
        }
        const QRectF frame = manager.frameForKey(entry.key());
        if (!element.isResolved() && frame != QRectF(0, 0, 0, 0))
            fail("unresolved element with a frame", entry.key());
        if (frame.x() < 0 || frame.y() < 0 || frame.width() < 0 || frame.height() < 0)
            fail("negative frame value", entry.key());
    }
    if (resolved != allResolved)
        fail("resolveLayout result disagrees with the elements", QString());
    if (manager.resolveLayout() != resolved)
        fail("resolving again changed the result", QString());

    const auto expected = reference.resolve();
    if (expected == test::OSTLayoutReferenceResolution::Result::Inconclusive)
        return 0;
    if (resolved != (expected == test::OSTLayoutReferenceResolution::Result::Resolved))
        fail("result differs from the pass-by-pass resolution", QString::fromUtf8(bytes));
    for (const auto &element : reference.elements()) {
        const auto actual = manager.elements().value(element.key);
        for (int index = 0; index < OSTLayoutElement::attributeCount; ++index) {
            const auto attribute = OSTLayoutElement::Attribute(index);
            if (actual->valueOfAttribute(OSTLayoutElement::attributeName(attribute))
                != element.values[size_t(index)])
                fail("strings differ from the pass-by-pass resolution",
                     element.key + QStringLiteral(".") + OSTLayoutElement::attributeName(attribute)
                         + QStringLiteral(": ") + actual->value(attribute) + QStringLiteral(" vs ")
                         + element.values[size_t(index)].value_or(QStringLiteral("<absent>")));
        }
    }
    return 0;
}
