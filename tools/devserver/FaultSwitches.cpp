#include "FaultSwitches.h"

#include <QStringList>

using namespace Qt::StringLiterals;

namespace ostrel::devserver {

namespace {

const QList<std::pair<QString, Fault::Body>> bodyNames = {
    {u"normal"_s, Fault::Body::Normal},         {u"garbage"_s, Fault::Body::Garbage},
    {u"bad-padding"_s, Fault::Body::BadPadding}, {u"not-json"_s, Fault::Body::NotJSON},
    {u"array"_s, Fault::Body::Array},           {u"empty"_s, Fault::Body::Empty},
    {u"oversized"_s, Fault::Body::Oversized},
};
const QList<std::pair<QString, Fault::Connection>> connectionNames = {
    {u"normal"_s, Fault::Connection::Normal},
    {u"drop"_s, Fault::Connection::Drop},
    {u"truncate"_s, Fault::Connection::Truncate},
};

template <typename Value>
std::optional<Value> valueNamed(const QList<std::pair<QString, Value>> &names, const QString &name)
{
    for (const auto &[candidate, value] : names) {
        if (candidate == name)
            return value;
    }
    return std::nullopt;
}

template <typename Value>
QString nameOf(const QList<std::pair<QString, Value>> &names, Value value)
{
    for (const auto &[name, candidate] : names) {
        if (candidate == value)
            return name;
    }
    return {};
}

bool isWholeNumber(const QJsonValue &value, int minimum, int maximum)
{
    const double number = value.toDouble(-1.0);
    return value.isDouble() && number == static_cast<double>(static_cast<int>(number)) && number >= minimum
        && number <= maximum;
}

// Command-line values are text; numbers are written as JSON numbers.
QJsonValue commandLineValue(const QString &key, const QString &text)
{
    if (key == u"body"_s || key == u"connection"_s)
        return text;
    bool isNumber = false;
    const double number = text.toDouble(&isNumber);
    return isNumber ? QJsonValue(number) : QJsonValue(text);
}

} // namespace

QJsonObject Fault::toJson(const QString &endpoint) const
{
    QJsonObject object{{u"endpoint"_s, endpoint},
                       {u"delay"_s, delaySeconds},
                       {u"body"_s, nameOf(bodyNames, body)},
                       {u"connection"_s, nameOf(connectionNames, connection)}};
    if (status)
        object.insert(u"status"_s, *status);
    if (remaining)
        object.insert(u"times"_s, *remaining);
    if (share)
        object.insert(u"share"_s, *share);
    if (largerThan)
        object.insert(u"larger_than"_s, double(*largerThan));
    return object;
}

std::optional<Fault> Fault::fromJson(const QJsonObject &object, QString &error)
{
    Fault fault;
    for (auto member = object.begin(); member != object.end(); ++member) {
        const QString key = member.key();
        const QJsonValue value = member.value();
        if (key == u"endpoint"_s) {
            continue;
        } else if (key == u"status"_s && isWholeNumber(value, 100, 599)) {
            fault.status = value.toInt();
        } else if (key == u"delay"_s && value.isDouble() && value.toDouble() >= 0.0 && value.toDouble() <= 3600.0) {
            fault.delaySeconds = value.toDouble();
        } else if (key == u"body"_s && valueNamed(bodyNames, value.toString())) {
            fault.body = *valueNamed(bodyNames, value.toString());
        } else if (key == u"connection"_s && valueNamed(connectionNames, value.toString())) {
            fault.connection = *valueNamed(connectionNames, value.toString());
        } else if (key == u"times"_s && isWholeNumber(value, 1, 1000000)) {
            fault.remaining = value.toInt();
        } else if (key == u"share"_s && value.isDouble() && value.toDouble() > 0.0 && value.toDouble() <= 1.0) {
            fault.share = value.toDouble();
        } else if (key == u"larger_than"_s && value.isDouble() && value.toDouble() >= 0.0) {
            fault.largerThan = static_cast<qint64>(value.toDouble());
        } else {
            error = u"unknown fault key or bad value: \"%1\""_s.arg(key);
            return std::nullopt;
        }
    }
    return fault;
}

std::optional<std::pair<QString, Fault>> Fault::fromCommandLine(const QString &text, QString &error)
{
    const qsizetype colon = text.indexOf(u':');
    if (colon <= 0) {
        error = u"a fault reads \"endpoint:key=value,...\", not \"%1\""_s.arg(text);
        return std::nullopt;
    }
    QJsonObject object;
    const QStringList settings = text.mid(colon + 1).split(u',', Qt::SkipEmptyParts);
    for (const QString &setting : settings) {
        const QStringList parts = setting.split(u'=');
        if (parts.size() != 2) {
            error = u"a fault setting reads \"key=value\", not \"%1\""_s.arg(setting);
            return std::nullopt;
        }
        object.insert(parts.at(0).trimmed(), commandLineValue(parts.at(0).trimmed(), parts.at(1).trimmed()));
    }
    const std::optional<Fault> fault = fromJson(object, error);
    if (!fault)
        return std::nullopt;
    return std::pair{text.left(colon), *fault};
}

void FaultSwitches::set(const QString &endpoint, const Fault &fault)
{
    m_faults.insert(endpoint, fault);
}

void FaultSwitches::clear()
{
    m_faults.clear();
}

std::optional<Fault> FaultSwitches::take(const QString &endpoint, qint64 bodySize)
{
    auto entry = m_faults.find(endpoint);
    if (entry == m_faults.end())
        entry = m_faults.find(anyEndpoint);
    if (entry == m_faults.end() || (entry->largerThan && bodySize <= *entry->largerThan))
        return std::nullopt;
    if (entry->share) {
        entry->shareCredit += *entry->share;
        if (entry->shareCredit < 1.0)
            return std::nullopt;
        entry->shareCredit -= 1.0;
    }
    const Fault fault = entry.value();
    if (entry->remaining && --*entry->remaining <= 0)
        m_faults.erase(entry);
    return fault;
}

QJsonArray FaultSwitches::toJson() const
{
    QJsonArray faults;
    for (auto entry = m_faults.begin(); entry != m_faults.end(); ++entry)
        faults.append(entry.value().toJson(entry.key()));
    return faults;
}

} // namespace ostrel::devserver
