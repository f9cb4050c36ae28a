#include "model/OSTInputOrder.h"

#include <algorithm>
#include <numeric>

namespace ostrel {

QList<qsizetype> OSTInputOrder::chain(const QList<int> &inputOrders)
{
    QList<qsizetype> indexes(inputOrders.size());
    std::iota(indexes.begin(), indexes.end(), 0);
    std::stable_sort(indexes.begin(), indexes.end(),
                     [&inputOrders](qsizetype a, qsizetype b) { return inputOrders.at(a) < inputOrders.at(b); });
    return indexes;
}

} // namespace ostrel
