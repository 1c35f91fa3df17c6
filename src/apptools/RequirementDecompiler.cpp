#include "apptools/RequirementDecompiler.h"

#include <QStringList>
#include <QtEndian>

namespace quorlin::apptools {

namespace {

constexpr quint32 requirementMagic = 0xFADE0C00;
constexpr quint32 requirementSetMagic = 0xFADE0C01;
constexpr quint32 expressionForm = 1;
constexpr quint32 designatedType = 3;
constexpr quint32 operationFlagMask = 0xFF000000;
constexpr int maximumDepth = 64;
constexpr int maximumRequirementCount = 64;

enum Operation : quint32 {
    opFalse,
    opTrue,
    opIdent,
    opAppleAnchor,
    opAnchorHash,
    opInfoKeyValue,
    opAnd,
    opOr,
    opCDHash,
    opNot,
    opInfoKeyField,
    opCertField,
    opTrustedCert,
    opTrustedCerts,
    opCertGeneric,
    opAppleGenericAnchor,
    opEntitlementField,
    opCertPolicy,
    opNamedAnchor,
    opNamedCode,
    opPlatform,
    opNotarized,
    opCertFieldDate,
    opLegacyDevID,
};

enum Match : quint32 {
    matchExists,
    matchEqual,
    matchContains,
    matchBeginsWith,
    matchEndsWith,
    matchLessThan,
    matchGreaterThan,
    matchLessEqual,
    matchGreaterEqual,
    matchOn,
    matchBefore,
    matchAfter,
    matchOnOrBefore,
    matchOnOrAfter,
    matchAbsent,
};

// How tightly a piece of text binds, to know where parentheses are needed.
enum class Binding { orLevel, andLevel, primary };

struct Piece {
    QString text;
    Binding binding = Binding::primary;
};

bool isSimple(const QByteArray& bytes) {
    if (bytes.isEmpty())
        return false;
    for (const char c : bytes) {
        const bool alphanumeric = (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9');
        if (!alphanumeric)
            return false;
    }
    return true;
}

bool isPrintable(const QByteArray& bytes) {
    for (const char c : bytes) {
        if (uchar(c) < 0x20 || c == 0x7F)
            return false;
    }
    return QString::fromUtf8(bytes).toUtf8() == bytes;
}

// A value as the text form writes it: bare when it is one word, quoted
// when it is text, and as hex digits when it is neither.
QString dataText(const QByteArray& bytes) {
    if (isSimple(bytes))
        return QString::fromLatin1(bytes);
    if (isPrintable(bytes)) {
        QString text = QString::fromUtf8(bytes);
        text.replace(QLatin1Char('\\'), QLatin1String("\\\\"))
            .replace(QLatin1Char('"'), QLatin1String("\\\""));
        return QLatin1Char('"') + text + QLatin1Char('"');
    }
    return QLatin1String("0x") + QString::fromLatin1(bytes.toHex());
}

QString hashText(const QByteArray& bytes) {
    return QLatin1String("H\"") + QString::fromLatin1(bytes.toHex()) + QLatin1Char('"');
}

QString slotText(qint32 slot) {
    if (slot == 0)
        return QStringLiteral("leaf");
    if (slot == -1)
        return QStringLiteral("root");
    return QString::number(slot);
}

// Dotted decimal of a DER object identifier's content octets.
std::optional<QString> oidText(const QByteArray& bytes) {
    if (bytes.isEmpty())
        return std::nullopt;
    QStringList arcs;
    quint64 value = 0;
    int length = 0;
    for (const char c : bytes) {
        if (++length > 9)
            return std::nullopt;
        value = (value << 7) | (uchar(c) & 0x7F);
        if (uchar(c) & 0x80)
            continue;
        if (arcs.isEmpty()) {
            const quint64 first = value < 80 ? value / 40 : 2;
            arcs << QString::number(first) << QString::number(value - first * 40);
        } else {
            arcs << QString::number(value);
        }
        value = 0;
        length = 0;
    }
    if (length != 0)
        return std::nullopt;
    return arcs.join(QLatin1Char('.'));
}

class ExpressionReader {
public:
    explicit ExpressionReader(const QByteArray& bytes)
        : m_bytes(bytes) {}

    std::optional<QString> readAll() {
        auto piece = expression(0);
        if (!piece || m_failed)
            return std::nullopt;
        return piece->text;
    }

private:
    std::optional<quint32> word() {
        if (m_bytes.size() - m_at < 4) {
            m_failed = true;
            return std::nullopt;
        }
        const quint32 value = qFromBigEndian<quint32>(m_bytes.constData() + m_at);
        m_at += 4;
        return value;
    }

    std::optional<QByteArray> data() {
        const auto length = word();
        if (!length || *length > quint64(m_bytes.size() - m_at)) {
            m_failed = true;
            return std::nullopt;
        }
        const QByteArray bytes = m_bytes.mid(m_at, *length);
        // Data is padded to a whole word.
        m_at = std::min<qsizetype>(m_bytes.size(), m_at + ((qsizetype(*length) + 3) & ~qsizetype(3)));
        return bytes;
    }

    std::optional<QString> match() {
        const auto kind = word();
        if (!kind)
            return std::nullopt;
        const auto valued = [this](const char* prefix, const char* suffix = "") -> std::optional<QString> {
            const auto value = data();
            if (!value)
                return std::nullopt;
            return QLatin1String(prefix) + dataText(*value) + QLatin1String(suffix);
        };
        switch (*kind) {
        case matchExists:
            return QStringLiteral(" /* exists */");
        case matchAbsent:
            return QStringLiteral(" absent");
        case matchEqual:
            return valued(" = ");
        case matchContains:
            return valued(" ~ ");
        case matchBeginsWith:
            return valued(" = ", "*");
        case matchEndsWith: {
            const auto value = data();
            return value ? std::optional<QString>(QLatin1String(" = *") + dataText(*value)) : std::nullopt;
        }
        case matchLessThan:
            return valued(" < ");
        case matchGreaterThan:
            return valued(" > ");
        case matchLessEqual:
            return valued(" <= ");
        case matchGreaterEqual:
            return valued(" >= ");
        case matchOn:
        case matchBefore:
        case matchAfter:
        case matchOnOrBefore:
        case matchOnOrAfter:
            return timestamp(*kind);
        default:
            return std::nullopt;
        }
    }

    std::optional<QString> timestamp(quint32 kind) {
        static const char* const symbols[] = {" = ", " < ", " > ", " <= ", " >= "};
        const auto high = word();
        const auto low = word();
        if (!high || !low)
            return std::nullopt;
        const qint64 seconds = qint64((quint64(*high) << 32) | *low);
        return QLatin1String(symbols[kind - matchOn]) + QStringLiteral("timestamp \"%1\"").arg(seconds);
    }

    std::optional<Piece> keyed(const QString& prefix, const QString& suffix, bool quoteKey) {
        const auto key = data();
        if (!key)
            return std::nullopt;
        const auto test = match();
        if (!test)
            return std::nullopt;
        const QString keyText = quoteKey ? dataText(*key) : QString::fromUtf8(*key);
        return Piece{prefix + QLatin1Char('[') + suffix + keyText + QLatin1Char(']') + *test};
    }

    std::optional<Piece> certificateOid(const char* kind) {
        const auto slot = word();
        const auto oid = data();
        if (!slot || !oid)
            return std::nullopt;
        const auto dotted = oidText(*oid);
        const auto test = match();
        if (!dotted || !test)
            return std::nullopt;
        return Piece{QStringLiteral("certificate %1[%2.%3]")
                         .arg(slotText(qint32(*slot)), QLatin1String(kind), *dotted) +
                     *test};
    }

    std::optional<Piece> binary(int depth, Binding binding) {
        auto left = expression(depth + 1);
        auto right = left ? expression(depth + 1) : std::nullopt;
        if (!left || !right)
            return std::nullopt;
        const QString joiner =
            binding == Binding::andLevel ? QStringLiteral(" and ") : QStringLiteral(" or ");
        return Piece{wrapped(*left, binding) + joiner + wrapped(*right, binding), binding};
    }

    static QString wrapped(const Piece& piece, Binding context) {
        if (piece.binding < context)
            return QLatin1Char('(') + piece.text + QLatin1Char(')');
        return piece.text;
    }

    std::optional<Piece> expression(int depth) {
        if (depth > maximumDepth) {
            m_failed = true;
            return std::nullopt;
        }
        const auto operation = word();
        if (!operation)
            return std::nullopt;
        switch (*operation & ~operationFlagMask) {
        case opFalse:
            return Piece{QStringLiteral("never")};
        case opTrue:
            return Piece{QStringLiteral("always")};
        case opIdent: {
            const auto identifier = data();
            return identifier
                       ? std::optional<Piece>(Piece{QLatin1String("identifier ") + dataText(*identifier)})
                       : std::nullopt;
        }
        case opAppleAnchor:
            return Piece{QStringLiteral("anchor apple")};
        case opAppleGenericAnchor:
            return Piece{QStringLiteral("anchor apple generic")};
        case opTrustedCerts:
            return Piece{QStringLiteral("anchor trusted")};
        case opNotarized:
            return Piece{QStringLiteral("notarized")};
        case opLegacyDevID:
            return Piece{QStringLiteral("legacy")};
        case opAnchorHash: {
            const auto slot = word();
            const auto hash = slot ? data() : std::nullopt;
            if (!hash)
                return std::nullopt;
            return Piece{QStringLiteral("certificate %1 = %2").arg(slotText(qint32(*slot)), hashText(*hash))};
        }
        case opCDHash: {
            const auto hash = data();
            return hash ? std::optional<Piece>(Piece{QLatin1String("cdhash ") + hashText(*hash)})
                        : std::nullopt;
        }
        case opTrustedCert: {
            const auto slot = word();
            if (!slot)
                return std::nullopt;
            return Piece{QStringLiteral("certificate %1 trusted").arg(slotText(qint32(*slot)))};
        }
        case opInfoKeyValue: {
            const auto key = data();
            const auto value = key ? data() : std::nullopt;
            if (!value)
                return std::nullopt;
            return Piece{QStringLiteral("info[%1] = %2").arg(dataText(*key), dataText(*value))};
        }
        case opInfoKeyField:
            return keyed(QStringLiteral("info"), {}, true);
        case opEntitlementField:
            return keyed(QStringLiteral("entitlement"), {}, true);
        case opCertField: {
            const auto slot = word();
            if (!slot)
                return std::nullopt;
            return keyed(QStringLiteral("certificate ") + slotText(qint32(*slot)), {}, false);
        }
        case opCertGeneric:
            return certificateOid("field");
        case opCertPolicy:
            return certificateOid("policy");
        case opCertFieldDate:
            return certificateOid("timestamp");
        case opNamedAnchor: {
            const auto name = data();
            return name ? std::optional<Piece>(Piece{QLatin1String("anchor apple ") + dataText(*name)})
                        : std::nullopt;
        }
        case opNamedCode: {
            const auto name = data();
            return name ? std::optional<Piece>(Piece{QLatin1Char('(') + dataText(*name) + QLatin1Char(')')})
                        : std::nullopt;
        }
        case opPlatform: {
            const auto platform = word();
            return platform ? std::optional<Piece>(Piece{QStringLiteral("platform = %1").arg(*platform)})
                            : std::nullopt;
        }
        case opAnd:
            return binary(depth, Binding::andLevel);
        case opOr:
            return binary(depth, Binding::orLevel);
        case opNot: {
            auto operand = expression(depth + 1);
            if (!operand)
                return std::nullopt;
            return Piece{QLatin1String("! ") + wrapped(*operand, Binding::primary)};
        }
        default:
            m_failed = true;
            return std::nullopt;
        }
    }

    const QByteArray& m_bytes;
    qsizetype m_at = 0;
    bool m_failed = false;
};

quint32 wordAt(const QByteArray& bytes, qsizetype offset) {
    return qFromBigEndian<quint32>(bytes.constData() + offset);
}

} // namespace

std::optional<QString> RequirementDecompiler::decompileExpression(const QByteArray& expression) {
    return ExpressionReader(expression).readAll();
}

std::optional<QString> RequirementDecompiler::decompileRequirement(const QByteArray& blob) {
    if (blob.size() < 12 || wordAt(blob, 0) != requirementMagic)
        return std::nullopt;
    const quint32 length = wordAt(blob, 4);
    if (length < 12 || length > quint64(blob.size()) || wordAt(blob, 8) != expressionForm)
        return std::nullopt;
    return decompileExpression(blob.mid(12, length - 12));
}

std::optional<QString> RequirementDecompiler::designatedRequirement(const QByteArray& requirementSet) {
    if (requirementSet.size() < 12 || wordAt(requirementSet, 0) != requirementSetMagic)
        return std::nullopt;
    const quint32 length = wordAt(requirementSet, 4);
    const quint32 count = wordAt(requirementSet, 8);
    if (length > quint64(requirementSet.size()) || count > maximumRequirementCount ||
        12 + quint64(count) * 8 > length)
        return std::nullopt;
    for (quint32 index = 0; index < count; ++index) {
        const quint32 type = wordAt(requirementSet, 12 + index * 8);
        const quint32 offset = wordAt(requirementSet, 16 + index * 8);
        if (type != designatedType)
            continue;
        if (offset > length - 8)
            return std::nullopt;
        const quint32 blobLength = wordAt(requirementSet, offset + 4);
        if (blobLength > length - offset)
            return std::nullopt;
        return decompileRequirement(requirementSet.mid(offset, blobLength));
    }
    return std::nullopt;
}

} // namespace quorlin::apptools
