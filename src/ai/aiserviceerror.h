#pragma once

#include "applanguage.h"

#include <QMetaType>
#include <QObject>
#include <QString>

// Why a chat call failed. Its description is what the user reads, in the language in force.
//
// `NetworkError` stands for every failure that is not one of the service's own judgements: the
// transport, a reply body that does not decode, a cancelled call, a time-out, a reply beyond the
// size bounds. `cause` says which, and `detail` carries the platform's own text of a transport
// failure. `ApiError` carries the text the proxy reported, or "HTTP " and the status.
class AIServiceError
{
    Q_GADGET
    Q_PROPERTY(Kind kind READ kind CONSTANT)
    Q_PROPERTY(Cause cause READ cause CONSTANT)
    Q_PROPERTY(QString detail READ detail CONSTANT)
    Q_PROPERTY(QString description READ description CONSTANT)
    Q_PROPERTY(bool isCancellation READ isCancellation CONSTANT)

public:
    enum class Kind {
        NetworkError,
        ApiError,
        // Kept for completeness: no path of the service raises it.
        DecodingError,
        InvalidConfiguration,
        InvalidURL,
        InvalidResponse,
        NoContent,
    };
    Q_ENUM(Kind)

    // What lies under a NetworkError or DecodingError.
    enum class Cause {
        None,
        Transport,
        Cancelled,
        TimedOut,
        Decoding,
        ResponseTooLarge,
        LineTooLong,
        // The connection closed before any byte of the answer; the request was not repeated.
        ClosedBeforeAnswer,
    };
    Q_ENUM(Cause)

    // Only for the meta-type system; the factories below make real errors.
    AIServiceError() = default;

    [[nodiscard]] static AIServiceError networkError(Cause cause, const QString &detail = {});
    [[nodiscard]] static AIServiceError apiError(const QString &message);
    [[nodiscard]] static AIServiceError decodingError(const QString &detail);
    [[nodiscard]] static AIServiceError invalidConfiguration();
    [[nodiscard]] static AIServiceError invalidURL();
    [[nodiscard]] static AIServiceError invalidResponse();
    [[nodiscard]] static AIServiceError noContent();

    [[nodiscard]] Kind kind() const { return m_kind; }
    [[nodiscard]] Cause cause() const { return m_cause; }
    [[nodiscard]] QString detail() const { return m_detail; }
    // A call that its caller cancelled; the caller usually shows nothing for it.
    [[nodiscard]] bool isCancellation() const
    {
        return m_kind == Kind::NetworkError && m_cause == Cause::Cancelled;
    }

    // "Network error: The request timed out.", "API error: HTTP 500", "AI returned no content"...
    [[nodiscard]] QString description(AppLanguage language) const;
    // In the language in force of the application's LanguageManager.
    [[nodiscard]] QString description() const;
    // The fixed first part of a description: the prefix of the three cases with a payload, the
    // whole text of the others.
    [[nodiscard]] QString title(AppLanguage language) const;

    friend bool operator==(const AIServiceError &, const AIServiceError &) = default;

private:
    AIServiceError(Kind kind, Cause cause, const QString &detail);
    [[nodiscard]] QString underlyingDescription(AppLanguage language) const;

    Kind m_kind = Kind::NoContent;
    Cause m_cause = Cause::None;
    QString m_detail;
};

Q_DECLARE_METATYPE(AIServiceError)
