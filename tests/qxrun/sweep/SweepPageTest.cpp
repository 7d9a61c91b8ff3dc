#include "qxrun/report/SweepPage.h"

#include <gtest/gtest.h>

#include <limits>
#include <nlohmann/json.hpp>
#include <sstream>
#include <string>

namespace qxrun {
namespace {

TEST(SweepPageTest, PageCarriesEveryPointAndFigureWithGapsAsNull) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const SweepPageData data{"ma_cross </script> sweep",
                           {"fast", "slow"},
                           {{5, 20}, {10, 20}, {5, 40}},
                           {"sharpe", "max_drawdown_pct"},
                           {{0.5, 0.1}, {nan, 0.2}, {-1.25, 0.3}},
                           "sharpe",
                           {"max_drawdown_pct"}};
  std::ostringstream page;
  WriteSweepPage(page, data);
  const std::string html = page.str();
  // The title is escaped; the only script ends are the page's own two.
  EXPECT_NE(html.find("ma_cross &lt;/script&gt; sweep"), std::string::npos);
  const std::string open = R"(<script id="sweep-data" type="application/json">)";
  const size_t begin = html.find(open);
  ASSERT_NE(begin, std::string::npos);
  const size_t end = html.find("</script>", begin);
  const nlohmann::json json =
      nlohmann::json::parse(html.substr(begin + open.size(), end - begin - open.size()));
  EXPECT_EQ(json["parameters"], nlohmann::json({"fast", "slow"}));
  ASSERT_EQ(json["points"].size(), 3u);
  EXPECT_EQ(json["points"][2], nlohmann::json({5.0, 40.0}));
  EXPECT_TRUE(json["rows"][1][0].is_null());
  EXPECT_EQ(json["rows"][2][0].get<double>(), -1.25);
  EXPECT_EQ(json["objective"], "sharpe");
  EXPECT_EQ(json["smaller"], nlohmann::json({"max_drawdown_pct"}));
}

}  // namespace
}  // namespace qxrun
