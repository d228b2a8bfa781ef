// The viewer ends the whole process when the driver cannot make what it draws with.
#pragma once

/// Around the creation of a viewer that draws: when that ends the process by exit(), a line on standard error says so.
/// The viewer writes its reason to its log alone. Does not nest; one thread at a time.
class ViewerStartNotice {
public:
    ViewerStartNotice();
    ~ViewerStartNotice();
    ViewerStartNotice(const ViewerStartNotice&) = delete;
    ViewerStartNotice& operator=(const ViewerStartNotice&) = delete;
};
