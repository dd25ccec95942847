#pragma once

// How many segments QwtPainter::drawPolyline puts in each piece when it hands a long polyline
// to the raster paint engine in pieces (it does so while QwtPainter::polylineSplitting() is on);
// 0 when it hands the polyline over whole.
//
// Qwt does not publish the piece size, so it is observed once per splitting setting by letting
// QwtPainter draw onto a paint engine that only records what it is given.
int polylineChunkSegments();

