// A program that the tests run beside themselves: it takes a place on the session bus, or posts a
// notification, and prints what happens to it.
#include <poll.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <string>
#include <vector>

#include "platform/linux/BusIntake.h"
#include "platform/linux/LinuxDistributedNotificationCenter.h"
#include "platform/linux/LinuxLog.h"

namespace tavrin {

namespace {

void say(const std::string& line) {
  std::printf("%s\n", line.c_str());
  std::fflush(stdout);
}

/// Prints a request; true when it asks for the end.
bool report(const ExternalRequest& request) {
  if (request.kind == ExternalRequest::Kind::Open) say("open " + request.path);
  if (request.kind == ExternalRequest::Kind::Reopen) say("reopen");
  return request.kind == ExternalRequest::Kind::Terminate;
}

/// Handles requests until one asks for the end or `limit` were handled.
void handleRequests(AcceptedRequests& accepted, int limit) {
  for (int handled = 0; handled < limit;) {
    pollfd waiting = {accepted.readyDescriptor(), POLLIN, 0};
    ::poll(&waiting, 1, -1);
    const auto request = accepted.take();
    if (!request) continue;
    ++handled;
    if (report(*request)) return;
  }
}

int takeRequests(int limit, const std::vector<std::string>& files) {
  LinuxLog log;
  AcceptedRequests accepted;
  BusIntake intake(accepted, log);
  BusIntake::Launch launch;
  launch.files = files;
  const auto outcome = intake.start(launch);
  if (outcome == BusIntake::Outcome::HandedOver) return 0;
  if (outcome == BusIntake::Outcome::Refused) return 1;
  intake.serve();
  say("primary");
  handleRequests(accepted, limit);
  intake.stop();
  while (const auto request = accepted.take()) report(*request);
  say("end");
  return 0;
}

int postNotification(const char* name) {
  LinuxLog log;
  AcceptedRequests accepted;
  BusIntake intake(accepted, log);
  intake.start({});
  LinuxDistributedNotificationCenter(intake.connection(), log).postNotificationName(name);
  // Nothing after the post helps it to leave.
  ::_exit(0);
}

}  // namespace

}  // namespace tavrin

int main(int argumentCount, char** arguments) {
  const std::vector<std::string> words(arguments + 1, arguments + argumentCount);
  if (words.size() == 2 && words[0] == "post") return tavrin::postNotification(words[1].c_str());
  if (words.size() < 2 || words[0] != "take") return 2;
  return tavrin::takeRequests(std::atoi(words[1].c_str()), {words.begin() + 2, words.end()});
}
