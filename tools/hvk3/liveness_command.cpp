#include <array>
#include <iomanip>
#include <sstream>

#include "hvk3/capture_run.h"
#include "hvk3/commands.h"
#include "hvk3/judgement.h"
#include "hvk3/scanner.h"

namespace hvk3 {
namespace {

constexpr unsigned int kFrames = 40;

constexpr char kExamples[] =
    "  hvk3 liveness                                frame, score, state, threshold, verdict\n"
    "  hvk3 liveness --level 2 --count 100          the stricter of the two levels\n"
    "  hvk3 liveness --set threshold=60             with a threshold of your own\n"
    "  hvk3 liveness --simulate --pace unlimited\n"
    "A score up to the threshold is a fake's. 'no-finger' stands for frames on which the detector\n"
    "finds nothing to judge. The plug-in delivers fakes as any other finger: the verdict is all.\n";

/// Tells of one frame and counts its verdict.
class Protocol {
 public:
  Protocol(Report& report, unsigned int threshold) : m_cReport(report), m_nThreshold(threshold) {
    m_cReport["threshold"] = threshold;
    m_cReport["judgements"] = nlohmann::ordered_json::array();
    summarise();
  }

  unsigned int frames() const { return m_nFrames; }

  void add(const Judgement& judgement) {
    ++m_nFrames;
    ++m_aCounts.at(static_cast<std::size_t>(judgement.verdict));
    m_cReport["judgements"].push_back({{"frame", m_nFrames},
                                       {"score", judgement.score},
                                       {"state", judgement.state},
                                       {"verdict", name_of(judgement.verdict)}});
    summarise();
    std::ostringstream line;
    line << m_nFrames << '\t' << std::fixed << std::setprecision(1) << judgement.score << '\t'
         << judgement.state << '\t' << m_nThreshold << '\t' << name_of(judgement.verdict) << '\n';
    m_cReport.text(line.str());
  }

 private:
  void summarise() {
    for (const eVerdict verdict : {eVerdict::Live, eVerdict::Fake, eVerdict::NoFinger}) {
      m_cReport["verdicts"][name_of(verdict)] = m_aCounts.at(static_cast<std::size_t>(verdict));
    }
  }

  Report& m_cReport;
  const unsigned int m_nThreshold;
  unsigned int m_nFrames = 0;
  std::array<unsigned int, 3> m_aCounts = {};
};

/// Turns detection on and gives its threshold. The client's settings come behind, so that they may
/// change it; nothing captures yet, and the session has no lock of its own.
unsigned int prepare(Context& context) {
  const Options& options = context.options();
  Osv::lx::ClFramegrabber& grabber = context.grabber();
  choose_scanner(grabber, options.device);
  check(grabber, grabber.SetFGProperty(ePropLiveliness, options.level));
  apply(grabber, options.settings);
  return read_property(grabber, find_property("threshold"));
}

void run(Context& context) {
  const unsigned int threshold = prepare(context);
  context.report()["level"] = context.options().level;
  Protocol protocol(context.report(), threshold);
  Judge judge(context.plugin(), threshold);
  const auto take = [&](const Image& /*image*/) {
    protocol.add(judge.take());
    return protocol.frames() == context.options().count;
  };
  run_capture(context,
              {eCaptureLive, take, [&judge](const unsigned char* /*image*/) { judge.observe(); }});
}

void add_options(CLI::App& app, Options& options) {
  options.count = kFrames;
  add_plugin_options(app, options);
  add_device_option(app, options);
  add_setting_option(app, options);
  add_level_option(app, options);
  add_count_option(app, options, "Number of frames");
  add_timeout_option(app, options);
}

}  // namespace

const Command kLivenessCommand = {"liveness", "Judge frame by frame whether a finger is a fake",
                                  kExamples, &add_options, &run};

}  // namespace hvk3
