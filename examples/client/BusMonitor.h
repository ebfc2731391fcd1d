#pragma once

class CHost;
class QWidget;

/// Creates a view of the latest events on the bus since its creation, at most 5000 with 4 MiB of payload, and of the
/// bytes of the chosen event, in hexadecimal digits and as text. Only the beginning of a larger payload is kept. \a
/// host outlives the view.
QWidget *CreateBusMonitor(CHost &host);
