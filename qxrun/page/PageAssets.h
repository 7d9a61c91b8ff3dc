// The page's fixed parts, built into the program: the chart library and the page template with
// its script and style sheet.
#ifndef QXRUN_PAGE_PAGE_ASSETS_H_
#define QXRUN_PAGE_PAGE_ASSETS_H_

#include <string_view>

namespace qxrun::page_assets {

std::string_view ChartLibrary();  // the standalone production build of the chart library
std::string_view PageTemplate();  // the HTML with @NAME@ slots
std::string_view PageScript();    // draws the charts from the page's data
std::string_view PageStyle();

}  // namespace qxrun::page_assets

#endif  // QXRUN_PAGE_PAGE_ASSETS_H_
