#include "MathParser/Tokenizer.h"

#include "MathParser/Configuration.h"
#include "MathParser/TokenCharacterBuffer.h"

namespace scrivlet::math {

Tokenizer::Tokenizer(QString string, const Configuration &configuration)
    : m_string(std::move(string)), m_configuration(configuration),
      m_variableExtractor(configuration.operatorSet->operatorTokenSet()),
      m_operatorExtractor(configuration.operatorSet->operatorTokenSet()),
      m_identifierExtractor(configuration.operatorSet->operatorTokenSet())
{
    const TokenExtractor *numberExtractor = &m_decimalNumberExtractor;
    if (configuration.locale) {
        m_localizedNumberExtractor.emplace(*configuration.locale);
        numberExtractor = &*m_localizedNumberExtractor;
    }
    m_extractors = {&m_hexNumberExtractor,      &m_octalNumberExtractor, numberExtractor,
                    &m_fractionNumberExtractor, &m_exponentExtractor,    &m_variableExtractor,
                    &m_quotedVariableExtractor, &m_operatorExtractor,    &m_identifierExtractor};
}

std::vector<RawToken> Tokenizer::tokenize() const
{
    std::vector<RawToken> tokens;
    // A token is at least one character: one allocation for any line of ordinary length.
    tokens.reserve(std::size_t(qMin<qsizetype>(m_string.size(), 256)));
    TokenCharacterBuffer buffer(m_string);
    // Declared once: constructing an empty optional of an error costs more than a token.
    std::optional<MathParserError> lastError;
    for (;;) {
        buffer.skipWhitespace();
        if (buffer.isAtEnd())
            break;
        const qsizetype start = buffer.currentIndex();
        lastError.reset();
        bool extracted = false;
        for (const TokenExtractor *extractor : m_extractors) {
            buffer.setCurrentIndex(start);
            if (!extractor->matchesPreconditions(buffer, m_configuration))
                continue;
            Either<RawToken, MathParserError> result = extractor->extract(buffer, m_configuration);
            if (result.hasValue()) {
                tokens.push_back(std::move(result).value());
                extracted = true;
                break;
            }
            lastError = std::move(result).error();
        }
        if (!extracted) {
            if (lastError)
                throw *lastError;
            throw MathParserError(MathParserError::Kind::cannotParseIdentifier, {start, start + 1});
        }
    }
    return tokens;
}

} // namespace scrivlet::math
