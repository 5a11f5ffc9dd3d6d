// Makes the records of launches.

#include "session/LaunchHistory.h"

using namespace corvane;

std::shared_ptr<LaunchRecord> LaunchHistory::makeRecord(const LaunchKey &key) {
  auto record = std::make_shared<LaunchRecord>();
  const std::lock_guard<std::mutex> guard(lock);
  record->fields = &shared(joinedFields(key, ','));
  return record;
}
