// The groups of comparisons. Each of these functions adds the work and the comparisons of one.
#pragma once

#include <memory>

#include "Group.h"
#include "Host.h"
#include "Setting.h"

namespace qv::bench {

// What the work of every group may use. It outlives all of it.
struct Bench {
  Setting setting;
  Host host;
  // Sizes that differ.
  bool quick;
};

void AddSmallCalls(Group& group, const Bench& bench);  // calls that cost as much as the way to them
void AddThreads(Group& group, const Bench& bench);     // the same on several threads at once
void AddFarCalls(Group& group, const Bench& bench);    // many calls over a long way
void AddCachedCalls(Group& group, const Bench& bench);
void AddManyRows(Group& group, const Bench& bench);
void AddFiles(Group& group, const Bench& bench);       // a small one and a large one
void AddSmallFiles(Group& group, const Bench& bench);  // a folder of very many

}  // namespace qv::bench
