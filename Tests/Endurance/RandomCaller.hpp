#pragma once

#include "Tests/Endurance/Damage.hpp"
#include "Tests/Endurance/EnduringGame.hpp"
#include "Tests/Endurance/Journal.hpp"
#include "Tests/Endurance/Randomness.hpp"
#include "Tests/Endurance/SickServer.hpp"
#include "Tests/Endurance/Watchdog.hpp"

#include <QString>

#include <array>
#include <functional>
#include <vector>

namespace Varnholt::TestSupport {

/// Plays a launcher whose user clicks at random while servers, disk and game do what they like.
/// The draws depend on the seed only, never on how far the module has come.
class RandomCaller {
public:
    RandomCaller(EnduringGame& p_Game, quint32 p_Seed);

    /// Makes one drawn step.
    void Step();
    /// Makes the world well again, lets the user act once more and then repair.
    /// \return what is wrong then, or was on the way; empty: the game is complete
    QString Heal();
    QString Describe() const;

private:
    /// How the user behaves: asks for anything, or mostly suspends and resumes what goes on.
    enum Mood { Wild, Steady, MoodCount };
    struct Kind {
        std::array<int, MoodCount> Weights;
        char const* Name;
        std::function<QString()> Run; ///< \return details for the journal
    };

    void AddOperations();
    void AddPumping();
    void AddWorld();
    void Add(int p_Wild, int p_Steady, char const* p_Name, std::function<QString()> p_Run);
    void ChangeMood();
    void Do(QString const& p_Name, std::function<QString()> const& p_Run);

    QString Install();
    QString Uninstall();
    QString Start();
    QString Pump(int p_Most, std::function<bool()> const& p_Condition);
    QString WaitForEnd();
    QString Repair();
    QString ChangeHost();
    void CalmHost();

    EnduringGame& Game;
    Randomness Random;
    SickServer Servers;
    Damage Disk;
    Journal Steps;
    QString FirstViolation;
    std::vector<Kind> Kinds;
    std::array<int, MoodCount> WeightSums{};
    Mood Now = Wild;
    int StepsOfThisMood = 0;
    Watchdog Dog;
};

} // namespace Varnholt::TestSupport
