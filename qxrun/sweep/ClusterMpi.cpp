// A build with MPI: the points of a sweep shared by the ranks of an mpirun job.
#include "qxrun/sweep/Cluster.h"

#include <algorithm>
#include <atomic>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <exception>
#include <mpi.h>
#include <mutex>
#include <thread>

namespace qxrun {
namespace {

// Whether a process manager started this process as a rank.
bool StartedByMpirun() {
  for (const char* name : {"OMPI_COMM_WORLD_SIZE", "PMIX_RANK", "PMI_SIZE"}) {
    if (std::getenv(name) != nullptr) return true;
  }
  return false;
}

// Before MPI starts: when every rank runs on this machine and nothing else was chosen, the ranks
// talk through shared memory alone; Open MPI then skips probing for cluster interconnects,
// about a fifth of a second of every job's start-up here.
void PreferSharedMemory() {
  const char* local = std::getenv("OMPI_COMM_WORLD_LOCAL_SIZE");
  const char* world = std::getenv("OMPI_COMM_WORLD_SIZE");
  if (local == nullptr || world == nullptr || std::strcmp(local, world) != 0) return;
  setenv("OMPI_MCA_pml", "ob1", 0);
}

// A counter on rank 0 that any rank increments atomically: the number of chunks taken so far.
class SharedCounter {
 public:
  SharedCounter(int rank) {
    MPI_Win_allocate(rank == 0 ? sizeof(long) : 0, sizeof(long), MPI_INFO_NULL, MPI_COMM_WORLD,
                     &base_, &window_);
    if (rank == 0) *base_ = 0;
    MPI_Barrier(MPI_COMM_WORLD);
  }
  ~SharedCounter() { MPI_Win_free(&window_); }

  long Next() {
    const long one = 1;
    long value = 0;
    MPI_Win_lock(MPI_LOCK_SHARED, 0, 0, window_);
    MPI_Fetch_and_op(&one, &value, MPI_LONG, 0, 0, MPI_SUM, window_);
    MPI_Win_unlock(0, window_);
    return value;
  }

  // Lets MPI answer the requests waiting for this rank. Where ranks share no memory (another
  // machine, or a transport without remote atomics) a request to rank 0's counter completes only
  // while rank 0 is inside MPI, so rank 0 looks in after each of its points.
  static void Serve() {
    int any = 0;
    MPI_Iprobe(MPI_ANY_SOURCE, MPI_ANY_TAG, MPI_COMM_WORLD, &any, MPI_STATUS_IGNORE);
  }

 private:
  long* base_ = nullptr;
  MPI_Win window_ = MPI_WIN_NULL;
};

}  // namespace

std::unique_ptr<Cluster> Cluster::Join() {
  if (!StartedByMpirun()) return nullptr;
  PreferSharedMemory();
  int provided = MPI_THREAD_SINGLE;
  MPI_Init_thread(nullptr, nullptr, MPI_THREAD_SERIALIZED, &provided);
  int rank = 0;
  int size = 1;
  MPI_Comm_rank(MPI_COMM_WORLD, &rank);
  MPI_Comm_size(MPI_COMM_WORLD, &size);
  return std::unique_ptr<Cluster>(new Cluster(rank, size, provided >= MPI_THREAD_SERIALIZED));
}

Cluster::~Cluster() { MPI_Finalize(); }

bool Cluster::AllAgree(bool ok) const {
  int mine = ok ? 1 : 0;
  int all = 0;
  MPI_Allreduce(&mine, &all, 1, MPI_INT, MPI_MIN, MPI_COMM_WORLD);
  return all == 1;
}

int Cluster::DefaultJobs() const {
  int local = 1;
  if (const char* text = std::getenv("OMPI_COMM_WORLD_LOCAL_SIZE")) local = std::atoi(text);
  return std::max(1, qxrun::DefaultJobs() / std::max(local, 1));
}

std::vector<std::vector<double>> Cluster::RunPoints(const SweepSetup& setup,
                                                    std::vector<QXDataSource>& sources,
                                                    const std::vector<ParamPoint>& points, int jobs,
                                                    const PointProgress& progress) {
  const size_t columns = FigureColumns().size();
  const long total = static_cast<long>(points.size());
  const int threads = threads_ ? std::max(jobs, 1) : 1;
  // A request to rank 0's counter may wait until rank 0 has finished its current point (see
  // Serve), so points go out in shrinking chunks: tens of requests for thousands of points,
  // single points at the end. Every rank plans the same chunks from every rank's threads.
  long allThreads = threads;
  MPI_Allreduce(MPI_IN_PLACE, &allThreads, 1, MPI_LONG, MPI_SUM, MPI_COMM_WORLD);
  const std::vector<int64_t> starts = GuidedChunkStarts(total, allThreads);
  const long chunks = static_cast<long>(starts.size()) - 1;
  KeepFreedBlocks();
  SharedCounter counter(rank_);
  std::mutex mpi;  // MPI is called by one thread at a time
  std::mutex mine;
  std::vector<double> packed;  // per point run here: its position, then its row
  std::exception_ptr failure;
  const auto work = [&] {
    for (;;) {
      long chunk = 0;
      {
        const std::lock_guard<std::mutex> lock(mpi);
        chunk = counter.Next();
      }
      if (chunk >= chunks) return;
      for (int64_t index = starts[static_cast<size_t>(chunk)];
           index < starts[static_cast<size_t>(chunk) + 1]; ++index) {
        try {
          std::vector<double> row =
              FigureValues(RunPointFigures(setup, sources, points[static_cast<size_t>(index)]));
          if (rank_ == 0) {
            const std::lock_guard<std::mutex> lock(mpi);
            SharedCounter::Serve();
          }
          const std::lock_guard<std::mutex> lock(mine);
          packed.push_back(static_cast<double>(index));
          packed.insert(packed.end(), row.begin(), row.end());
          if (progress && rank_ == 0) progress(index + 1, total);
        } catch (...) {
          const std::lock_guard<std::mutex> lock(mine);
          if (!failure) failure = std::current_exception();
          return;
        }
      }
    }
  };
  std::vector<std::thread> workers;
  for (int i = 1; i < threads; ++i) workers.emplace_back(work);
  work();
  for (std::thread& worker : workers) worker.join();
  if (failure) {
    // The other ranks would wait for this one's rows for ever.
    try {
      std::rethrow_exception(failure);
    } catch (const std::exception& error) {
      std::fprintf(stderr, "qxrun: rank %d: internal error: %s\n", rank_, error.what());
    }
    MPI_Abort(MPI_COMM_WORLD, 1);
  }

  // Every rank's rows to every rank.
  int count = static_cast<int>(packed.size());
  std::vector<int> counts(static_cast<size_t>(size_));
  MPI_Allgather(&count, 1, MPI_INT, counts.data(), 1, MPI_INT, MPI_COMM_WORLD);
  std::vector<int> offsets(static_cast<size_t>(size_), 0);
  for (size_t r = 1; r < counts.size(); ++r) offsets[r] = offsets[r - 1] + counts[r - 1];
  std::vector<double> all(static_cast<size_t>(offsets.back() + counts.back()));
  MPI_Allgatherv(packed.data(), count, MPI_DOUBLE, all.data(), counts.data(), offsets.data(),
                 MPI_DOUBLE, MPI_COMM_WORLD);
  std::vector<std::vector<double>> rows(points.size());
  for (size_t at = 0; at + columns < all.size() + 1; at += columns + 1) {
    const size_t index = static_cast<size_t>(all[at]);
    rows[index].assign(all.begin() + static_cast<long>(at) + 1,
                       all.begin() + static_cast<long>(at + 1 + columns));
  }
  return rows;
}

}  // namespace qxrun
