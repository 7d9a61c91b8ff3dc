// A build without MPI: never part of a job.
#include "qxrun/sweep/Cluster.h"

namespace qxrun {

std::unique_ptr<Cluster> Cluster::Join() { return nullptr; }

Cluster::~Cluster() = default;

bool Cluster::AllAgree(bool ok) const { return ok; }

int Cluster::DefaultJobs() const { return qxrun::DefaultJobs(); }

std::vector<std::vector<double>> Cluster::RunPoints(const SweepSetup& setup,
                                                    std::vector<QXDataSource>& sources,
                                                    const std::vector<ParamPoint>& points, int jobs,
                                                    const PointProgress& progress) {
  return qxrun::RunPoints(setup, sources, points, jobs, progress);
}

}  // namespace qxrun
