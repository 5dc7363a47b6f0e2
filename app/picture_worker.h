// The worker process of a PicturePool: decodes pictures within limits of memory, and may crash without harm to the pool.
#ifndef CATALOGCORE_APP_PICTURE_WORKER_H_
#define CATALOGCORE_APP_PICTURE_WORKER_H_

namespace catalogcore::app {

// Whether a PicturePool started this process as a worker.
bool IsPictureWorker(int argc, char** argv);

// Answers requests until the pool closes its socket; returns the exit status. Call it at the start of main.
int RunPictureWorker(char** argv);

}  // namespace catalogcore::app

#endif  // CATALOGCORE_APP_PICTURE_WORKER_H_
