#pragma once

#include "UtilsDllGlobal.h"

#include <QString>

/// Addresses of the redirect pages on the vendor's web host, which lead on to where a page is now.
/// Any thread.
class UTILSDLL_EXPORT CRedirectionLinks
{
public:
    /// What a page is about. Support and the version's help are those of version 3, all others
    /// those of the product, whatever its version.
    enum vekLinkType
    {
        ltHome, ///< the vendor's home page, which has no localized form
        ltImprovementProgram, ///< what is done with statistics, for users who let them be sent
        ltSupport, ///< help by people
        ltAcademy, ///< lessons
        ltShop, ///< where the product is bought
        ltPatents, ///< the patents behind it
        ltProductHelp, ///< the manual
        ltModules, ///< further correction modules
        ltVersionHelp ///< the manual of this version
    };

    /// The address of a page: with \a localized the page of the default locale's country, unless
    /// its language is English; the home page has none. An unknown type logs an assertion and gives
    /// an address that ends before the page.
    static QString get(vekLinkType type, bool localized);
};
