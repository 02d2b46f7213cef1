#include "MathTestSupport.h"

#include "MathParser/Configuration.h"
#include "MathParser/DecimalNumberExtractor.h"
#include "MathParser/ExponentExtractor.h"
#include "MathParser/FractionNumberExtractor.h"
#include "MathParser/HexNumberExtractor.h"
#include "MathParser/IdentifierExtractor.h"
#include "MathParser/LocalizedNumberExtractor.h"
#include "MathParser/OctalNumberExtractor.h"
#include "MathParser/OperatorExtractor.h"
#include "MathParser/QuotedVariableExtractor.h"
#include "MathParser/Tokenizer.h"
#include "MathParser/VariableExtractor.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>

namespace scrivlet::math {
namespace {

using Kind = RawToken::Kind;

struct ExpectedToken {
    Kind kind;
    const char16_t *text;
    double value = 0.0;
};

struct TokenizeCase {
    const char16_t *input;
    std::vector<ExpectedToken> tokens;
};

void PrintTo(const TokenizeCase &c, std::ostream *os)
{
    *os << '"' << QString::fromUtf16(c.input).toStdString() << '"';
}

class TokenizerCutsTokens : public ::testing::TestWithParam<TokenizeCase> {};

TEST_P(TokenizerCutsTokens, KindsTextsAndValues)
{
    const TokenizeCase &c = GetParam();
    const Tokenizer tokenizer(QString::fromUtf16(c.input), Configuration::shared());
    const std::vector<RawToken> tokens = tokenizer.tokenize();
    ASSERT_EQ(tokens.size(), c.tokens.size());
    for (std::size_t i = 0; i < tokens.size(); ++i) {
        SCOPED_TRACE(i);
        EXPECT_EQ(tokens[i].kind(), c.tokens[i].kind);
        EXPECT_EQ(tokens[i].string().toString(), QString::fromUtf16(c.tokens[i].text));
        if (tokens[i].isNumber()) {
            EXPECT_DOUBLE_EQ(tokens[i].numberValue(), c.tokens[i].value);
        }
    }
}

INSTANTIATE_TEST_SUITE_P(
    Extractors, TokenizerCutsTokens,
    ::testing::Values(
        TokenizeCase{u"", {}}, TokenizeCase{u" \t\u00A0\u3000 ", {}},
        TokenizeCase{u"0x1F", {{Kind::hexNumber, u"0x1F", 31}}},
        TokenizeCase{u"0XfF", {{Kind::hexNumber, u"0XfF", 255}}},
        TokenizeCase{u"0o17", {{Kind::octalNumber, u"0o17", 15}}},
        TokenizeCase{u"0o78", {{Kind::octalNumber, u"0o7", 7}, {Kind::decimalNumber, u"8", 8}}},
        // A prefix without digits is not a number of that base: the 0 stands alone.
        TokenizeCase{u"0x", {{Kind::decimalNumber, u"0", 0}, {Kind::identifier, u"x"}}},
        TokenizeCase{u"1.5e3", {{Kind::decimalNumber, u"1.5e3", 1500}}},
        TokenizeCase{u"2e-3", {{Kind::decimalNumber, u"2e-3", 0.002}}},
        TokenizeCase{u"2E+2", {{Kind::decimalNumber, u"2E+2", 200}}},
        TokenizeCase{u"2e−3", {{Kind::decimalNumber, u"2e−3", 0.002}}},
        TokenizeCase{u"1.5e", {{Kind::decimalNumber, u"1.5", 1.5}, {Kind::identifier, u"e"}}},
        TokenizeCase{u"2e-x",
                     {{Kind::decimalNumber, u"2", 2},
                      {Kind::identifier, u"e"},
                      {Kind::operatorSymbol, u"-"},
                      {Kind::identifier, u"x"}}},
        TokenizeCase{u".5", {{Kind::decimalNumber, u".5", 0.5}}},
        TokenizeCase{u"1.2.3", {{Kind::decimalNumber, u"1.2", 1.2}, {Kind::decimalNumber, u".3", 0.3}}},
        TokenizeCase{u"1\u00A0+\u20092",
                     {{Kind::decimalNumber, u"1", 1}, {Kind::operatorSymbol, u"+"}, {Kind::decimalNumber, u"2", 2}}},
        TokenizeCase{u"1½", {{Kind::decimalNumber, u"1", 1}, {Kind::fractionNumber, u"½", 0.5}}},
        TokenizeCase{u"⅞", {{Kind::fractionNumber, u"⅞", 0.875}}},
        TokenizeCase{u"2²", {{Kind::decimalNumber, u"2", 2}, {Kind::exponent, u"2"}}},
        TokenizeCase{u"10⁻¹²", {{Kind::decimalNumber, u"10", 10}, {Kind::exponent, u"-12"}}},
        TokenizeCase{u"2⁽¹⁺³⁾", {{Kind::decimalNumber, u"2", 2}, {Kind::exponent, u"(1+3)"}}},
        TokenizeCase{u"$rate*2",
                     {{Kind::variable, u"rate"}, {Kind::operatorSymbol, u"*"}, {Kind::decimalNumber, u"2", 2}}},
        TokenizeCase{u"'unit price' + \"a\\\"b\"",
                     {{Kind::variable, u"unit price"}, {Kind::operatorSymbol, u"+"}, {Kind::variable, u"a\"b"}}},
        TokenizeCase{u"'tab\\tnew\\nline\\\\'", {{Kind::variable, u"tab\tnew\nline\\"}}},
        TokenizeCase{u"2**3",
                     {{Kind::decimalNumber, u"2", 2}, {Kind::operatorSymbol, u"**"}, {Kind::decimalNumber, u"3", 3}}},
        TokenizeCase{u"a<=b", {{Kind::identifier, u"a"}, {Kind::operatorSymbol, u"<="}, {Kind::identifier, u"b"}}},
        TokenizeCase{u"3!!!",
                     {{Kind::decimalNumber, u"3", 3}, {Kind::operatorSymbol, u"!!"}, {Kind::operatorSymbol, u"!"}}},
        TokenizeCase{u"--2",
                     {{Kind::operatorSymbol, u"-"}, {Kind::operatorSymbol, u"-"}, {Kind::decimalNumber, u"2", 2}}},
        TokenizeCase{u"sin⁻¹(x)",
                     {{Kind::identifier, u"sin⁻¹"},
                      {Kind::operatorSymbol, u"("},
                      {Kind::identifier, u"x"},
                      {Kind::operatorSymbol, u")"}}},
        TokenizeCase{u"2pi", {{Kind::decimalNumber, u"2", 2}, {Kind::identifier, u"pi"}}}));

TEST(Tokenizer, TokenRangesIndexTheLine)
{
    const Tokenizer tokenizer(QStringLiteral("  12 +\u00A0sin(x)"), Configuration::shared());
    const std::vector<RawToken> tokens = tokenizer.tokenize();
    ASSERT_EQ(tokens.size(), 6u);
    EXPECT_EQ(tokens[0].range(), (CharacterRange{2, 4}));
    EXPECT_EQ(tokens[1].range(), (CharacterRange{5, 6}));
    EXPECT_EQ(tokens[2].range(), (CharacterRange{7, 10}));
    EXPECT_EQ(tokens[5].range(), (CharacterRange{12, 13}));
}

TEST(Tokenizer, LocalizedNumbersFollowTheConfiguredLocale)
{
    Configuration german;
    german.locale = QLocale(QLocale::German, QLocale::Germany);
    const Tokenizer tokenizer(QStringLiteral("1.234,5+0,5"), german);
    const std::vector<RawToken> tokens = tokenizer.tokenize();
    ASSERT_EQ(tokens.size(), 3u);
    EXPECT_EQ(tokens[0].kind(), Kind::localizedNumber);
    EXPECT_DOUBLE_EQ(tokens[0].numberValue(), 1234.5);
    EXPECT_DOUBLE_EQ(tokens[2].numberValue(), 0.5);

    const MathResult<Expression> parsed = parse(QStringLiteral("2,5*2"), german);
    ASSERT_TRUE(parsed);
    const MathResult<double> value = evaluate(parsed.value());
    ASSERT_TRUE(value);
    EXPECT_DOUBLE_EQ(value.value(), 5.0);
}

TEST(Tokenizer, OperatorCharactersThatFormNoTokenFail)
{
    auto set = std::make_shared<OperatorSet>();
    set->addOperator(
        Operator(QStringLiteral("at"), Operator::Arity::binary, Operator::Associativity::left, {QStringLiteral("@@")}),
        OperatorSet::Relation::equalTo, set->multiplyOperator());
    Configuration configuration;
    configuration.operatorSet = set;

    EXPECT_EQ(Tokenizer(QStringLiteral("2 @@ 3"), configuration).tokenize().size(), 3u);
    try {
        Tokenizer(QStringLiteral("2 @ 3"), configuration).tokenize();
        FAIL() << "a lone \"@\" is no token";
    } catch (const MathParserError &error) {
        EXPECT_EQ(error.kind(), MathParserError::Kind::cannotParseOperator);
        EXPECT_EQ(error.range().start, 2);
    }
}

// Each extractor on its own, at a position its kind of token cannot be read from.
struct ExtractorErrorCase {
    const char *extractor;
    const char16_t *input;
    MathParserError::Kind kind;
    bool allowZeroLengthVariables = false;
};

void PrintTo(const ExtractorErrorCase &c, std::ostream *os)
{
    *os << c.extractor << " on \"" << QString::fromUtf16(c.input).toStdString() << '"';
}

class ExtractorErrors : public ::testing::TestWithParam<ExtractorErrorCase> {};

TEST_P(ExtractorErrors, ReportTheirOwnKind)
{
    const ExtractorErrorCase &c = GetParam();
    Configuration configuration;
    configuration.allowZeroLengthVariables = c.allowZeroLengthVariables;
    const OperatorTokenSet &operators = configuration.operatorSet->operatorTokenSet();
    const std::string name = c.extractor;

    std::unique_ptr<TokenExtractor> extractor;
    if (name == "hex")
        extractor = std::make_unique<HexNumberExtractor>();
    else if (name == "octal")
        extractor = std::make_unique<OctalNumberExtractor>();
    else if (name == "decimal")
        extractor = std::make_unique<DecimalNumberExtractor>();
    else if (name == "localized")
        extractor = std::make_unique<LocalizedNumberExtractor>(QLocale(QLocale::German, QLocale::Germany));
    else if (name == "fraction")
        extractor = std::make_unique<FractionNumberExtractor>();
    else if (name == "exponent")
        extractor = std::make_unique<ExponentExtractor>();
    else if (name == "variable")
        extractor = std::make_unique<VariableExtractor>(operators);
    else if (name == "quoted")
        extractor = std::make_unique<QuotedVariableExtractor>();
    else if (name == "operator")
        extractor = std::make_unique<OperatorExtractor>(operators);
    else
        extractor = std::make_unique<IdentifierExtractor>(operators);

    const QString input = QString::fromUtf16(c.input);
    TokenCharacterBuffer buffer(input);
    const Either<RawToken, MathParserError> result = extractor->extract(buffer, configuration);
    ASSERT_TRUE(result.hasError());
    EXPECT_EQ(result.error().kind(), c.kind);
    EXPECT_EQ(result.error().range().start, 0);
}

using K = MathParserError::Kind;
INSTANTIATE_TEST_SUITE_P(EveryExtractor, ExtractorErrors,
                         ::testing::Values(ExtractorErrorCase{"hex", u"0x", K::cannotParseHexNumber},
                                           ExtractorErrorCase{"hex", u"0xg1", K::cannotParseHexNumber},
                                           ExtractorErrorCase{"octal", u"0o8", K::cannotParseOctalNumber},
                                           ExtractorErrorCase{"decimal", u".", K::cannotParseNumber},
                                           ExtractorErrorCase{"localized", u",", K::cannotParseLocalizedNumber},
                                           ExtractorErrorCase{"fraction", u"1", K::cannotParseFractionalNumber},
                                           ExtractorErrorCase{"exponent", u"2", K::cannotParseExponent},
                                           ExtractorErrorCase{"variable", u"$", K::zeroLengthVariable},
                                           ExtractorErrorCase{"variable", u"$+1", K::zeroLengthVariable},
                                           ExtractorErrorCase{"variable", u"x", K::cannotParseVariable},
                                           ExtractorErrorCase{"quoted", u"'open", K::cannotParseQuotedVariable},
                                           ExtractorErrorCase{"quoted", u"'ends in escape\\'",
                                                              K::cannotParseQuotedVariable},
                                           ExtractorErrorCase{"quoted", u"''", K::zeroLengthVariable},
                                           ExtractorErrorCase{"operator", u"abc", K::cannotParseOperator},
                                           ExtractorErrorCase{"identifier", u" x", K::cannotParseIdentifier},
                                           ExtractorErrorCase{"identifier", u"+", K::cannotParseIdentifier}));

TEST(Tokenizer, ZeroLengthVariablesWhenAllowed)
{
    Configuration configuration;
    configuration.allowZeroLengthVariables = true;
    const std::vector<RawToken> tokens = Tokenizer(QStringLiteral("$ + ''"), configuration).tokenize();
    ASSERT_EQ(tokens.size(), 3u);
    EXPECT_EQ(tokens[0].kind(), Kind::variable);
    EXPECT_TRUE(tokens[0].string().isEmpty());
    EXPECT_EQ(tokens[2].kind(), Kind::variable);
    EXPECT_TRUE(tokens[2].string().isEmpty());
}

TEST(Tokenizer, QuotedNamesKeepEscapesWhenNotUnescaping)
{
    Configuration configuration;
    configuration.unescapesQuotedVariables = false;
    const std::vector<RawToken> tokens = Tokenizer(QStringLiteral("'a\\tb\\''"), configuration).tokenize();
    ASSERT_EQ(tokens.size(), 1u);
    EXPECT_EQ(tokens[0].string().toString(), QStringLiteral("a\\tb\\'"));
}

} // namespace
} // namespace scrivlet::math
