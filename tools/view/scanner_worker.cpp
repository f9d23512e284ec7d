#include "view/scanner_worker.h"

namespace hvk3::view {

ScannerWorker::ScannerWorker(Context& context, Board& board, EventLog& events)
    : m_cContext(context), m_cBoard(board), m_cEvents(events), m_cThread([this] { work(); }) {}

ScannerWorker::~ScannerWorker() {
  end();
  m_cThread.join();
}

void ScannerWorker::ask(eAction action) {
  {
    const std::lock_guard<std::mutex> lock(m_cLock);
    m_cActions.push_back(action);
  }
  m_cWakeup.notify();
}

void ScannerWorker::end() {
  m_bEnd = true;
  m_cWakeup.notify();
}

void ScannerWorker::work() {
  try {
    work_at_desk();
  } catch (const Failure& failure) {
    fail(failure);
  } catch (const std::exception& error) {
    fail(Failure(ExitStatus::Internal, error.what()));
  }
  m_bEnded = true;
}

void ScannerWorker::work_at_desk() {
  ScannerDesk desk(m_cContext, m_cBoard, m_cEvents, m_cWakeup);
  desk.open();
  while (!m_bEnd) {
    (void)m_cWakeup.wait(desk.next_look());
    while (const std::optional<eAction> action = next_action()) {
      desk.perform(*action);
    }
    desk.look();
  }
}

std::optional<eAction> ScannerWorker::next_action() {
  const std::lock_guard<std::mutex> lock(m_cLock);
  if (m_bEnd || m_cActions.empty()) {
    return std::nullopt;
  }
  const eAction action = m_cActions.front();
  m_cActions.pop_front();
  return action;
}

void ScannerWorker::fail(const Failure& failure) {
  m_cFailure = failure;
  m_cBoard.update([&](Status& status) {
    status.connection = eConnection::Failed;
    status.reason = {failure.what(), remedy_for(failure)};
    status.notice = {};
  });
  m_cContext.console().message(failure.what());
  m_cEvents.tell("failed");
}

}  // namespace hvk3::view
