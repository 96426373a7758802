#ifndef WATCH_H
#define WATCH_H

#include <map>
#include <string>
#include <vector>

#include "Agent.h"

/// Shows the interfaces with what they receive and send a second, a bar of what both have come to
/// lately, and the latest changes: on a terminal a screen that is drawn anew, elsewhere lines.
class Watch : public View {
public:
    explicit Watch(bool withColour) : hasColour(withColour) {}
    ~Watch() override;  ///< leaves the terminal as it was

    void BeginPoll(const Poll& poll, const char* path, const Configuration&) override;
    void Invoke(TqBaseObject* source, TqCallbackData* data) override;
    void EndPoll() override;
    bool Wait(unsigned int seconds) override;  ///< false when the user has had enough
    void Finish(unsigned int changeCount) override;

private:
    struct Row {
        TqString state;
        unsigned int inCount;
        unsigned int outCount;
        double received;  ///< bytes a second; negative before the second poll
        double sent;
        std::vector<double> history;  ///< of their sum, the latest at the end
    };

    void Open();
    double SecondsSince(const char* path, const Configuration& configuration);
    void PrintLines() const;
    void Draw() const;
    std::vector<TqString> Screen(unsigned int width, size_t height) const;
    TqString Line(const std::string& name, const Row& row, unsigned int width) const;
    TqString Coloured(const char* colour, const char* text) const;

    const bool hasColour;
    bool isOpen = false;  ///< whether the terminal has been taken
    bool isScreen = false;
    TqString title;
    std::map<std::string, Row> rows;
    std::vector<TqString> fired;  ///< the latest changes, the latest one at the end
    long long lastPoll = 0;       ///< in ms
};

#endif
