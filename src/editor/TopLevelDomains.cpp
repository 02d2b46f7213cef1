#include "editor/TopLevelDomains.h"

#include <algorithm>
#include <array>
#include <iterator>

namespace scrivlet {

namespace {

// Sorted, lower case: looked up by binary search on every candidate link.
constexpr std::array kTopLevelDomains = {
    u"ac",          u"academy",     u"accountant", u"ad",         u"ae",        u"aero",      u"af",
    u"africa",      u"ag",          u"agency",     u"ai",         u"al",        u"am",        u"amazon",
    u"amsterdam",   u"ao",          u"app",        u"apple",      u"aq",        u"ar",        u"art",
    u"as",          u"asia",        u"at",         u"au",         u"audio",     u"auto",      u"aw",
    u"ax",          u"az",          u"ba",         u"band",       u"bank",      u"bar",       u"bb",
    u"bd",          u"be",          u"beer",       u"berlin",     u"bf",        u"bg",        u"bh",
    u"bi",          u"bike",        u"biz",        u"bj",         u"blog",      u"bm",        u"bn",
    u"bo",          u"br",          u"bs",         u"bt",         u"bw",        u"by",        u"bz",
    u"ca",          u"cafe",        u"capital",    u"car",        u"care",      u"cars",      u"cat",
    u"cc",          u"cd",          u"center",     u"cf",         u"cg",        u"ch",        u"chat",
    u"ci",          u"city",        u"ck",         u"cl",         u"click",     u"clinic",    u"clothing",
    u"cloud",       u"club",        u"cm",         u"cn",         u"co",        u"codes",     u"college",
    u"com",         u"community",   u"company",    u"consulting", u"coop",      u"coupons",   u"courses",
    u"cr",          u"cu",          u"cv",         u"cw",         u"cx",        u"cy",        u"cz",
    u"de",          u"deals",       u"dental",     u"design",     u"dev",       u"digital",   u"dj",
    u"dk",          u"dm",          u"do",         u"doctor",     u"domains",   u"dz",        u"ec",
    u"edu",         u"education",   u"ee",         u"eg",         u"email",     u"er",        u"es",
    u"et",          u"eu",          u"events",     u"exchange",   u"expert",    u"fashion",   u"fi",
    u"film",        u"finance",     u"fitness",    u"fj",         u"fk",        u"flights",   u"fm",
    u"fo",          u"food",        u"fr",         u"fun",        u"fund",      u"fyi",       u"ga",
    u"gallery",     u"game",        u"games",      u"gd",         u"ge",        u"gf",        u"gg",
    u"gh",          u"gi",          u"gl",         u"global",     u"gm",        u"gmbh",      u"gn",
    u"google",      u"gov",         u"gp",         u"gq",         u"gr",        u"group",     u"gs",
    u"gt",          u"gu",          u"guru",       u"gw",         u"gy",        u"health",    u"help",
    u"hk",          u"hm",          u"hn",         u"holiday",    u"homes",     u"host",      u"hosting",
    u"hotel",       u"house",       u"hr",         u"ht",         u"hu",        u"id",        u"ie",
    u"il",          u"im",          u"in",         u"inc",        u"info",      u"insurance", u"int",
    u"investments", u"io",          u"iq",         u"ir",         u"is",        u"it",        u"je",
    u"jm",          u"jo",          u"jobs",       u"jp",         u"ke",        u"kg",        u"kh",
    u"ki",          u"km",          u"kn",         u"kp",         u"kr",        u"kw",        u"ky",
    u"kz",          u"la",          u"land",       u"law",        u"lb",        u"lc",        u"legal",
    u"li",          u"life",        u"link",       u"live",       u"lk",        u"llc",       u"lol",
    u"london",      u"lr",          u"ls",         u"lt",         u"ltd",       u"lu",        u"lv",
    u"ly",          u"ma",          u"mail",       u"market",     u"markets",   u"mc",        u"md",
    u"me",          u"media",       u"mg",         u"mh",         u"microsoft", u"mil",       u"mk",
    u"ml",          u"mm",          u"mn",         u"mo",         u"mobi",      u"money",     u"mp",
    u"mq",          u"mr",          u"ms",         u"mt",         u"mu",        u"museum",    u"music",
    u"mv",          u"mw",          u"mx",         u"my",         u"mz",        u"na",        u"name",
    u"nc",          u"ne",          u"net",        u"network",    u"new",       u"news",      u"nf",
    u"ng",          u"ni",          u"nl",         u"no",         u"np",        u"nr",        u"nu",
    u"nyc",         u"nz",          u"om",         u"one",        u"online",    u"org",       u"pa",
    u"page",        u"paris",       u"party",      u"pe",         u"pf",        u"pg",        u"ph",
    u"photo",       u"photography", u"photos",     u"pictures",   u"pizza",     u"pk",        u"pl",
    u"plus",        u"pm",          u"pn",         u"post",       u"pr",        u"pro",       u"properties",
    u"ps",          u"pt",          u"pw",         u"py",         u"qa",        u"re",        u"realestate",
    u"recipes",     u"restaurant",  u"ro",         u"rs",         u"ru",        u"run",       u"rw",
    u"sa",          u"sale",        u"sb",         u"sc",         u"school",    u"science",   u"sd",
    u"se",          u"services",    u"sg",         u"sh",         u"shoes",     u"shop",      u"shopping",
    u"si",          u"site",        u"sk",         u"sl",         u"sm",        u"sn",        u"so",
    u"social",      u"software",    u"solutions",  u"space",      u"sr",        u"ss",        u"st",
    u"store",       u"studio",      u"style",      u"su",         u"support",   u"sv",        u"sx",
    u"sy",          u"systems",     u"sz",         u"tax",        u"tc",        u"td",        u"team",
    u"tech",        u"tel",         u"tf",         u"tg",         u"th",        u"tickets",   u"tips",
    u"tj",          u"tk",          u"tl",         u"tm",         u"tn",        u"to",        u"today",
    u"tokyo",       u"tools",       u"top",        u"tours",      u"tr",        u"trade",     u"training",
    u"travel",      u"tt",          u"tv",         u"tw",         u"tz",        u"ua",        u"ug",
    u"uk",          u"university",  u"us",         u"uy",         u"uz",        u"va",        u"vc",
    u"ve",          u"vg",          u"vi",         u"video",      u"vip",       u"vn",        u"vu",
    u"website",     u"wf",          u"wiki",       u"win",        u"wine",      u"works",     u"world",
    u"ws",          u"wtf",         u"xxx",        u"xyz",        u"ye",        u"youtube",   u"yt",
    u"za",          u"zm",          u"zone",       u"zw",
};

} // namespace

bool isKnownTopLevelDomain(QStringView label)
{
    if (label.isEmpty() || label.size() > 24)
        return false;
    char16_t lower[24];
    for (qsizetype i = 0; i < label.size(); ++i)
        lower[i] = label.at(i).toLower().unicode();
    const std::u16string_view wanted(lower, std::size_t(label.size()));
    const auto found = std::lower_bound(
        std::begin(kTopLevelDomains), std::end(kTopLevelDomains), wanted,
        [](const char16_t *entry, std::u16string_view value) { return std::u16string_view(entry) < value; });
    return found != std::end(kTopLevelDomains) && std::u16string_view(*found) == wanted;
}

} // namespace scrivlet
