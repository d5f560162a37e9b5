#include "planning/sweep.h"

#include "planning/child.h"
#include "planning/failure_lines.h"

#include <algorithm>
#include <stdexcept>
#include <string>
#include <vector>

namespace tarnex::planning
{

namespace
{

/** One sweep; a failure is called by its place in the shard. */
class Sweep
{
public:
    Sweep(FailureStudy &shared, const Plan &ofPlan, const FailureList &all,
          const SweepOptions &chosen, const TakeTried &taker, Progress &listener)
        : study(shared), plan(ofPlan), failures(all), options(chosen), take(taker),
          progress(listener), size(options.shard.size(failures.size()))
    {
    }

    void alone()
    {
        for (std::size_t k = options.done; k < size && goesOn(k); ++k)
            take(tryOut(k));
    }

    /** Places `k` go to the children in turn, each of which tells what it found in order. */
    void together()
    {
        const std::size_t nbLeft = size - std::min(options.done, size);
        const std::size_t nbChildren = std::min(options.jobs, nbLeft);
        std::vector<Child> children;
        for (std::size_t child = 0; child < nbChildren; ++child)
            children.push_back(from(options.done + child, nbChildren));
        for (std::size_t k = options.done; k < size && goesOn(k); ++k) {
            Child &child = children[(k - options.done) % nbChildren];
            std::string line;
            if (!child.readLine(line)) {
                child = from(k, nbChildren);
                if (!child.readLine(line))
                    throw std::runtime_error("the failure of " + failures[options.shard[k]].name +
                                             " cannot be tried: the process dies over it");
            }
            take(triedIn(line, plan));
        }
    }

private:
    bool goesOn(std::size_t k)
    {
        progress.at(Phase::failing, k, size);
        return !progress.mustStop();
    }

    TriedFailure tryOut(std::size_t k)
    {
        const Failure failure = failures[options.shard[k]];
        TriedFailure tried{options.shard[k], FailureName{failure}, study.effectOf(failure)};
        std::erase_if(tried.effect.lsps, [this](const FailedLsp &lsp) {
            return !options.listsLost || (lsp.fate != Fate::lost && lsp.fate != Fate::displaced);
        });
        return tried;
    }

    /** A child that tries every `step`-th failure. */
    Child from(std::size_t first, std::size_t step)
    {
        return Child{[this, first, step](const Child::Tell &tell) {
            for (std::size_t k = first; k < size; k += step)
                tell(lineOf(tryOut(k)) + '\n');
        }};
    }

    FailureStudy &study;
    const Plan &plan;
    const FailureList &failures;
    const SweepOptions &options;
    const TakeTried &take;
    Progress &progress;
    std::size_t size;
};

} // namespace

void sweep(FailureStudy &study, const Plan &plan, const FailureList &failures,
           const SweepOptions &options, const TakeTried &take, Progress &progress)
{
    Sweep all{study, plan, failures, options, take, progress};
    if (options.jobs > 1)
        all.together();
    else
        all.alone();
}

} // namespace tarnex::planning
