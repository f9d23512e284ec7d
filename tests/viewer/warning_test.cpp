#include "viewer/viewer_fixture.h"

namespace hvk3::test {
namespace {

using Warning = Viewer;

TEST_F(Warning, IsToldInTheWindowAsAnEventAndOnStandardError) {
  start({"--plugin", HVK3_WARNING_PLUGIN});
  wait_for("started 0 WARNING1");
  wait_for("warning");
  EXPECT_GT(picture().count(layout().notice, kRed), 20);
  EXPECT_TRUE(m_pViewer->wait_for_error_text("hvk3-view: warning: the platen is dirty\n"));
}

}  // namespace
}  // namespace hvk3::test
