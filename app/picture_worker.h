// A process that decodes pictures for another, so that a picture costs no more than that process: neither its memory, nor
// its time, nor its life.
#ifndef CATALOGCORE_APP_PICTURE_WORKER_H_
#define CATALOGCORE_APP_PICTURE_WORKER_H_

namespace catalogcore::app {

// Whether this process was started by a PicturePool to be a worker.
bool IsPictureWorker(int argc, char** argv);

// Answers requests until the pool goes away; returns the exit status. To be called at the start of main.
int RunPictureWorker(char** argv);

}  // namespace catalogcore::app

#endif  // CATALOGCORE_APP_PICTURE_WORKER_H_
