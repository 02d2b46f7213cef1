#include "calculation/CurrencyUnit.h"

#include <QHash>

#include <array>

namespace scrivlet {

namespace {

constexpr std::array<const char16_t *, kCurrencyUnitCount> kCodes = {
    u"1INCH", u"AAVE", u"ADA",  u"AED",  u"AFN",   u"AGIX",  u"AKT",   u"ALGO", u"ALL",  u"AMD",  u"AMP",  u"ANG",
    u"AOA",   u"APE",  u"APT",  u"AR",   u"ARB",   u"ARS",   u"ATOM",  u"ATS",  u"AUD",  u"AVAX", u"AWG",  u"AXS",
    u"AZM",   u"AZN",  u"BAKE", u"BAM",  u"BAT",   u"BBD",   u"BCH",   u"BDT",  u"BEF",  u"BGN",  u"BHD",  u"BIF",
    u"BMD",   u"BNB",  u"BND",  u"BOB",  u"BRL",   u"BSD",   u"BSV",   u"BSW",  u"BTC",  u"BTG",  u"BTN",  u"BTT",
    u"BUSD",  u"BWP",  u"BYN",  u"BYR",  u"BZD",   u"CAD",   u"CAKE",  u"CDF",  u"CELO", u"CFX",  u"CHF",  u"CHZ",
    u"CLP",   u"CNH",  u"CNY",  u"COMP", u"COP",   u"CRC",   u"CRO",   u"CRV",  u"CSPR", u"CUC",  u"CUP",  u"CVE",
    u"CVX",   u"CYP",  u"CZK",  u"DAI",  u"DASH",  u"DCR",   u"DEM",   u"DFI",  u"DJF",  u"DKK",  u"DOGE", u"DOP",
    u"DOT",   u"DYDX", u"DZD",  u"EEK",  u"EGLD",  u"EGP",   u"ENJ",   u"EOS",  u"ERN",  u"ESP",  u"ETB",  u"ETC",
    u"ETH",   u"EUR",  u"FEI",  u"FIL",  u"FIM",   u"FJD",   u"FKP",   u"FLOW", u"FLR",  u"FRAX", u"FRF",  u"FTT",
    u"GALA",  u"GBP",  u"GEL",  u"GGP",  u"GHC",   u"GHS",   u"GIP",   u"GMD",  u"GMX",  u"GNF",  u"GNO",  u"GRD",
    u"GRT",   u"GT",   u"GTQ",  u"GUSD", u"GYD",   u"HBAR",  u"HKD",   u"HNL",  u"HNT",  u"HOT",  u"HRK",  u"HT",
    u"HTG",   u"HUF",  u"ICP",  u"IDR",  u"IEP",   u"ILS",   u"IMP",   u"IMX",  u"INJ",  u"INR",  u"IQD",  u"IRR",
    u"ISK",   u"ITL",  u"JEP",  u"JMD",  u"JOD",   u"JPY",   u"KAS",   u"KAVA", u"KCS",  u"KDA",  u"KES",  u"KGS",
    u"KHR",   u"KLAY", u"KMF",  u"KNC",  u"KPW",   u"KRW",   u"KSM",   u"KWD",  u"KYD",  u"KZT",  u"LAK",  u"LBP",
    u"LDO",   u"LEO",  u"LINK", u"LKR",  u"LRC",   u"LRD",   u"LSL",   u"LTC",  u"LTL",  u"LUF",  u"LUNA", u"LUNC",
    u"LVL",   u"LYD",  u"MAD",  u"MANA", u"MBX",   u"MDL",   u"MGA",   u"MGF",  u"MINA", u"MKD",  u"MKR",  u"MMK",
    u"MNT",   u"MOP",  u"MRO",  u"MRU",  u"MTL",   u"MUR",   u"MVR",   u"MWK",  u"MXN",  u"MXV",  u"MYR",  u"MZM",
    u"MZN",   u"NAD",  u"NEAR", u"NEO",  u"NEXO",  u"NFT",   u"NGN",   u"NIO",  u"NLG",  u"NOK",  u"NPR",  u"NZD",
    u"OKB",   u"OMR",  u"ONE",  u"OP",   u"ORDI",  u"PAB",   u"PAXG",  u"PEN",  u"PEPE", u"PGK",  u"PHP",  u"PKR",
    u"PLN",   u"PTE",  u"PYG",  u"QAR",  u"QNT",   u"QTUM",  u"ROL",   u"RON",  u"RPL",  u"RSD",  u"RUB",  u"RUNE",
    u"RVN",   u"RWF",  u"SAND", u"SAR",  u"SBD",   u"SCR",   u"SDD",   u"SDG",  u"SEK",  u"SGD",  u"SHIB", u"SHP",
    u"SIT",   u"SKK",  u"SLE",  u"SLL",  u"SNX",   u"SOL",   u"SOS",   u"SPL",  u"SRD",  u"SRG",  u"STD",  u"STN",
    u"STX",   u"SUI",  u"SVC",  u"SYP",  u"SZL",   u"THB",   u"THETA", u"TJS",  u"TMM",  u"TMT",  u"TND",  u"TON",
    u"TOP",   u"TRL",  u"TRX",  u"TRY",  u"TTD",   u"TUSD",  u"TVD",   u"TWD",  u"TWT",  u"TZS",  u"UAH",  u"UGX",
    u"UNI",   u"USD",  u"USDC", u"USDD", u"USDP",  u"USDT",  u"UYU",   u"UZS",  u"VAL",  u"VEB",  u"VED",  u"VEF",
    u"VES",   u"VET",  u"VND",  u"VUV",  u"WAVES", u"WEMIX", u"WOO",   u"WST",  u"XAF",  u"XAG",  u"XAU",  u"XAUT",
    u"XBT",   u"XCD",  u"XCG",  u"XCH",  u"XDC",   u"XDR",   u"XEC",   u"XEM",  u"XLM",  u"XMR",  u"XOF",  u"XPD",
    u"XPF",   u"XPT",  u"XRP",  u"XTZ",  u"YER",   u"ZAR",   u"ZEC",   u"ZIL",  u"ZMK",  u"ZMW",  u"ZWD",  u"ZWG",
    u"ZWL",
};

static_assert(int(CurrencyUnit::zwl) == kCurrencyUnitCount - 1, "one code per case");

} // namespace

QString currencyCode(CurrencyUnit unit)
{
    return QString::fromUtf16(kCodes[std::size_t(unit)]);
}

std::optional<CurrencyUnit> currencyUnitFromCode(QStringView code)
{
    static const QHash<QString, CurrencyUnit> byCode = [] {
        QHash<QString, CurrencyUnit> map;
        map.reserve(kCurrencyUnitCount);
        for (int i = 0; i < kCurrencyUnitCount; ++i)
            map.insert(QString::fromUtf16(kCodes[std::size_t(i)]), currencyUnitAt(i));
        return map;
    }();
    const auto found = byCode.constFind(code.toString());
    if (found == byCode.constEnd())
        return std::nullopt;
    return *found;
}

} // namespace scrivlet
