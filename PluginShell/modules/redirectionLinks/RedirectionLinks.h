#pragma once

#include "UtilsDllGlobal.h"

#include <QString>

/// Addresses of the redirect pages on the vendor's web host, which lead on to where a page is now.
/// Any thread.
class UTILSDLL_EXPORT CRedirectionLinks
{
public:
    enum vekLinkType
    {
        ltHome,
        ltImprovementProgram,
        ltSupport,
        ltAcademy,
        ltShop,
        ltPatents,
        ltProductHelp,
        ltModules,
        ltVersionHelp
    };

    /// With \a localized the page of the default locale's country, unless its language is English;
    /// the home page has none. An unknown type logs an assertion and gives an address that ends
    /// before the page.
    static QString get(vekLinkType type, bool localized);
};
