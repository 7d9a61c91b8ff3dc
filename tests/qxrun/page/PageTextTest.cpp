// Text made safe for the page.
#include "page/PageText.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>

namespace qxrun {
namespace {

TEST(PageText, HtmlEscapesMarkupAndRepairsBrokenUtf8) {
  struct Case {
    std::string text;
    std::string escaped;
  } const cases[] = {
      {"a < b && c > \"d\" 'e'", "a &lt; b &amp;&amp; c &gt; &quot;d&quot; &#39;e&#39;"},
      {"</script>", "&lt;/script&gt;"},
      {"\xE5\x9D\x87\xE7\xBA\xBF", "\xE5\x9D\x87\xE7\xBA\xBF"},  // two CJK characters stay
      {"\xF0\x9F\x93\x88", "\xF0\x9F\x93\x88"},                  // a four-byte character stays
      // GBK bytes are not UTF-8: each stray byte becomes U+FFFD (EF BF BD).
      {"\xBE\xF9x", "\xEF\xBF\xBD\xEF\xBF\xBDx"},
      {"\xC0\xAF", "\xEF\xBF\xBD\xEF\xBF\xBD"},                  // overlong "/"
      {"\xED\xA0\x80", "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD"},  // a surrogate
      {"\xE5\x9D", "\xEF\xBF\xBD\xEF\xBF\xBD"},                  // cut short at the end
      {std::string("a\0b", 3), std::string("a\0b", 3)},
  };
  for (const Case& c : cases) {
    EXPECT_EQ(EscapeHtml(c.text), c.escaped) << c.text;
  }
}

TEST(PageText, ScriptTextCannotCloseItsElement) {
  EXPECT_EQ(ScriptSafeJson(R"({"name":"</script><!--"})"), R"({"name":"\u003c/script>\u003c!--"})");
  EXPECT_EQ(ScriptSafeJson("[1,2]"), "[1,2]");
  EXPECT_EQ(ScriptSafeCode("a='</script>';b='</SCRIPT';c='</div>';d=1</2"),
            "a='<\\/script>';b='<\\/SCRIPT';c='</div>';d=1</2");
  EXPECT_EQ(ScriptSafeCode("x</scrip"), "x</scrip");  // too short to close anything
}

TEST(PageText, NumbersForPeople) {
  EXPECT_EQ(GroupThousands(0), "0");
  EXPECT_EQ(GroupThousands(999), "999");
  EXPECT_EQ(GroupThousands(1000), "1,000");
  EXPECT_EQ(GroupThousands(1000000), "1,000,000");
  EXPECT_EQ(GroupThousands(12345678901), "12,345,678,901");

  EXPECT_EQ(FormatPercent(0.01234), "1.23%");
  EXPECT_EQ(FormatPercent(-0.1), "-10.00%");
  EXPECT_EQ(FormatPercent(0.015), "1.50%");
  EXPECT_EQ(FormatPercent(-0.00001), "0.00%");  // no negative zero
  EXPECT_EQ(FormatPercent(2.5), "250.00%");
  EXPECT_EQ(FormatPercent(std::numeric_limits<double>::infinity()), "n/a");
}

}  // namespace
}  // namespace qxrun
