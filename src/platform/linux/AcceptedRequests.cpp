#include "platform/linux/AcceptedRequests.h"

#include <sys/eventfd.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <system_error>
#include <utility>

#include "platform/linux/LinuxPropertyListSerialization.h"

namespace tavrin {

namespace {

using Contents = Result<PropertyList::Data>;

std::size_t sizeOf(const Contents& contents) {
  return contents ? contents.value().size() : 0;
}

}  // namespace

AcceptedRequests::AcceptedRequests()
    : ready_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK | EFD_SEMAPHORE)) {
  // Without it the program could accept requests and would never handle one.
  if (!ready_) throw std::system_error(errno, std::generic_category(), "eventfd");
}

bool AcceptedRequests::push(const std::vector<ExternalRequest>& requests) {
  if (requests.empty()) return true;
  std::vector<std::pair<std::string, File>> files;
  std::size_t bytes = 0;
  for (const ExternalRequest& request : requests) {
    if (request.kind != ExternalRequest::Kind::Open) continue;
    files.emplace_back(request.path,
                       File{contentsOfPropertyListFile(request.path), request.startupToken});
    bytes += sizeOf(files.back().second.contents);
    if (bytes > maximumWaitingBytes) return false;
  }

  const std::lock_guard lock(mutex_);
  if (bytes > maximumWaitingBytes - waitingBytes_) return false;
  waitingBytes_ += bytes;
  for (auto& [path, file] : files) contents_[path].push_back(std::move(file));
  requests_.insert(requests_.end(), requests.begin(), requests.end());
  const std::uint64_t added = requests.size();
  [[maybe_unused]] const ssize_t written = ::write(ready_.get(), &added, sizeof added);
  return true;
}

std::optional<ExternalRequest> AcceptedRequests::take() {
  const std::lock_guard lock(mutex_);
  if (requests_.empty()) return std::nullopt;
  std::uint64_t one = 0;
  [[maybe_unused]] const ssize_t taken = ::read(ready_.get(), &one, sizeof one);
  ExternalRequest request = std::move(requests_.front());
  requests_.pop_front();
  return request;
}

std::optional<AcceptedRequests::File> AcceptedRequests::takeContents(const std::string& path) {
  const std::lock_guard lock(mutex_);
  const auto waiting = contents_.find(path);
  if (waiting == contents_.end()) return std::nullopt;
  File file = std::move(waiting->second.front());
  waitingBytes_ -= sizeOf(file.contents);
  waiting->second.pop_front();
  if (waiting->second.empty()) contents_.erase(waiting);
  return file;
}

std::size_t AcceptedRequests::size() const {
  const std::lock_guard lock(mutex_);
  return requests_.size();
}

}  // namespace tavrin
