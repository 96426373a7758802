#ifndef TQ_DATE_TIME_H
#define TQ_DATE_TIME_H

#include <ctime>

#include "TqDataType.h"
#include "TqString.h"

/// The calendar date and time of day, held as the standard library's `struct tm` in UTC. Type id
/// 10.
///
/// Of the value operations it has text output, assignment and cloning only. It has no item and
/// cannot be parsed or compared: those operations report and do nothing. Take a copy with
/// `Assignment` or `operator=`; the copy constructor, and with it `Clone`, makes an all-zero date.
///
/// Ownership: nothing beyond itself; what the zone name in `time` points at is borrowed.
/// Lock: none. Reports: source "TqDateTime".
class TQ_API TqDateTime : public TqDataType {
public:
    /// The current time; see `SetNow`.
    TqDateTime();

    /// The first nine members of `*t`, not null; see `SetTime`.
    TqDateTime(const tm* t);

    /// Not supported: the new date is all zero, whatever `other` holds, and the copy is reported.
    TqDateTime(const TqDateTime& other);

    ~TqDateTime() override;

    /// Takes the first nine members of `other.time`; see `SetTime`.
    TqDateTime& operator=(const TqDateTime& other);

    /// Takes the current time in UTC; see `SetTime`. A time that is beyond the calendar of the C
    /// library changes nothing.
    void SetNow();

    /// Takes the first nine members of `*t`, which must not be null: seconds through the
    /// daylight-saving flag, as they are. The offset from UTC and the zone name stay as they were.
    void SetTime(const tm* t);

    short TypeId() const override;

    /// Hands over an all-zero date and reports, as the copy constructor does.
    TqDataType* Clone() const override;

    /// "month/day/year hours:minutes:seconds" of the members as they are stored: the month counts
    /// from 0 and the year from 1900. When month, day or year is 0, so in every January, the date
    /// and its blank are left out. Programs that read these texts reckon with both.
    ///
    ///     5 March 2024 06:07:08 "02/05/0124 06:07:08";  5 January 2024 06:07:08 "06:07:08"
    void ToString(TqString& out) const override;

    /// Not supported: reports and changes nothing.
    void FromString(const char* text) override;

    /// Not supported: reports and leaves `out` alone.
    void ToBuffer(TqBuffer& out) const override;

    /// Not supported: reports and reads nothing.
    void FromBuffer(TqBuffer& in) override;

    /// Not supported: reports and returns 0.
    int Compare(const TqDataType& other) const override;

    /// Not supported: reports, null or not, and returns false.
    bool Equals(const TqDataType* other) const override;

    /// Takes over all of `other.time`, offset and zone name included.
    void Assignment(const TqDataType& other) override;

    tm time;        ///< the date; all members are defined from construction on
    TqString text;  ///< empty; for the use of derived classes

    static short typeId;  ///< 10, for naming the id without an object
};

#endif
