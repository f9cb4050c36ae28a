#pragma once

#include <QList>

namespace ostrel {

// The order in which a screen's inputs (text fields and pickers) take the focus on return and
// Tab: by the input order of their descriptions, inputs of the same order as the screen built
// them. Each input's next input is the one after it; the last has none, and return there ends
// the chain. A toolkit links its inputs in this order.
//
// Stateless; any thread.
class OSTInputOrder {
public:
    OSTInputOrder() = delete;

    // The indexes of the inputs whose input orders `inputOrders` lists, in chain order.
    static QList<qsizetype> chain(const QList<int> &inputOrders);
};

} // namespace ostrel
