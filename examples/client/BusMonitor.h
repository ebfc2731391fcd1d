#pragma once

class CHost;
class QWidget;

/// The latest events that have crossed the bus since it was made, at most 5000 with 4 MiB of payload, and the bytes
/// of the one that has the cursor. Of a payload that is larger by itself the front is kept. \a host outlives it.
QWidget *CreateBusMonitor(CHost &host);
