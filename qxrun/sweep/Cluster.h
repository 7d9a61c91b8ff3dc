// The ranks of an MPI job, when qxrun was started by mpirun and built with MPI.
//
// Every rank reads the same command line, plans the same points and loads the bars itself. The
// points are handed out in chunks that shrink to single points towards the end, from a counter
// that rank 0 holds (a rank that finishes early takes the next chunk); each rank runs its points
// on its own threads, and the rows are gathered to every rank in the points' order. Only rank 0
// prints and writes files.
#ifndef QXRUN_SWEEP_CLUSTER_H_
#define QXRUN_SWEEP_CLUSTER_H_

#include "qxrun/sweep/PointRuns.h"

#include <memory>
#include <vector>

namespace qxrun {

class Cluster {
 public:
  // Joins the job when this process is a rank of one (MPI is started); nullptr otherwise, or
  // when qxrun was built without MPI.
  static std::unique_ptr<Cluster> Join();
  ~Cluster();  // ends MPI
  Cluster(const Cluster&) = delete;
  Cluster& operator=(const Cluster&) = delete;

  int Rank() const { return rank_; }
  int Size() const { return size_; }
  // Threads per rank by default: the hardware threads shared by the ranks on this machine.
  int DefaultJobs() const;

  // Whether every rank is `ok`. Collective.
  bool AllAgree(bool ok) const;

  // Every point's row, in the points' order, on every rank. Collective: every rank calls it
  // with the same points.
  std::vector<std::vector<double>> RunPoints(const SweepSetup& setup,
                                             std::vector<QXDataSource>& sources,
                                             const std::vector<ParamPoint>& points, int jobs,
                                             const PointProgress& progress);

 private:
  Cluster(int rank, int size, bool threads) : rank_(rank), size_(size), threads_(threads) {}

  int rank_ = 0;
  int size_ = 1;
  bool threads_ = false;  // whether MPI may be called from several threads in turn
};

}  // namespace qxrun

#endif  // QXRUN_SWEEP_CLUSTER_H_
