#pragma once

#include <QHash>
#include <QJsonArray>
#include <QJsonObject>
#include <QString>

#include <optional>

namespace ostrel::devserver {

// How one answer is to go wrong.
struct Fault {
    // What replaces a well-formed encrypted answer.
    enum class Body {
        Normal,
        Garbage,    // bytes that are not ciphertext (not a whole number of blocks)
        BadPadding, // one block whose padding is wrong
        NotJSON,    // encrypted text that is not JSON
        Array,      // an encrypted top-level JSON array
        Empty,      // no bytes at all
        Oversized,  // 17 MiB, announced in Content-Length
    };
    enum class Connection {
        Normal,
        Drop,     // closed without an answer
        Truncate, // headers promise the whole body, half of it is sent, then closed
    };

    // Answered instead of the endpoint's status (the body is then a short text).
    std::optional<int> status;
    double delaySeconds = 0.0;
    Body body = Body::Normal;
    Connection connection = Connection::Normal;
    // How many more answers it applies to; unlimited when absent.
    std::optional<int> remaining;
    // The share of answers it applies to (0 to 1), spread evenly: 0.5 is every other answer.
    // Every answer when absent.
    std::optional<double> share;
    // Applies only to requests whose body is longer than this many bytes (a service's size limit).
    std::optional<qint64> largerThan;
    // Accumulates the share; an answer is faulted whenever it reaches 1.
    double shareCredit = 0.0;

    // The fault written in the admin route's form, with "endpoint".
    QJsonObject toJson(const QString &endpoint) const;
    // Reads {"status": 500, "delay": 2.5, "body": "garbage", "connection": "drop", "times": 1,
    // "share": 0.5, "larger_than": 1048576}.
    static std::optional<Fault> fromJson(const QJsonObject &object, QString &error);
    // Reads "endpoint:key=value,key=value" with the keys above, e.g. "launch_v3:status=500,times=1".
    static std::optional<std::pair<QString, Fault>> fromCommandLine(const QString &text, QString &error);
};

// The faults in force, per endpoint; "*" applies to every endpoint that has none of its own.
// The image route counts as the endpoint "images".
class FaultSwitches {
public:
    static inline const QString anyEndpoint = QStringLiteral("*");

    void set(const QString &endpoint, const Fault &fault);
    void clear();
    // The fault for the next answer of `endpoint` to a request of `bodySize` bytes, using up one
    // of its counted answers.
    std::optional<Fault> take(const QString &endpoint, qint64 bodySize = 0);
    QJsonArray toJson() const;

private:
    QHash<QString, Fault> m_faults;
};

} // namespace ostrel::devserver
