: #!/usr/bin/env lua
: -- A tower that shoots at what comes near.
= cccccccccccccccccccccccccccccccccccccccccc
: local Tower = {}
= kkkkk
: Tower.__index = Tower
:
: --[[ Ranges are in tiles.
= cccccccccccccccccccccccccc
:      "quoted", 42 and function() are only words here. ]]
= cccccccccccccccccccccccccccccccccccccccccccccccccccccccc
: local RANGE, MASK = 12.5, 0xff
= kkkkk               nnnn  nnnn
: local SLOW = 1e-3
= kkkkk        nnnn
:
: local help = [[
= kkkkk        sss
: tower 'name'   -- not a comment
= ssssssssssssssssssssssssssssssss
: tower "other"
= ssssssssssssss
: ]]
= ss
:
: function Tower.new(name, x, y)
= kkkkkkkk       fff
:   local self = setmetatable({}, Tower)
=   kkkkk bbbb   bbbbbbbbbbbb
:   self.name = name or 'tower \'one\''
=   bbbb             kk sssssssssssssss
:   self.x, self.y = x, y
=   bbbb    bbbb
:   self.targets = nil
=   bbbb           bbb
:   return self
=   kkkkkk bbbb
: end
= kkk
:
: function Tower:aim(enemies)
= kkkkkkkk       fff
:   for index, enemy in ipairs(enemies) do
=   kkk              kk bbbbbb          kk
:     local dx, dy = enemy.x - self.x, enemy.y - self.y
=     kkkkk                    bbbb              bbbb
:     if dx * dx + dy * dy <= RANGE ^ 2 and not enemy.dead then
=     kk                              n kkk kkk            kkkk
:       self.target = enemy
=       bbbb
:       break
=       kkkkk
:     elseif enemy.dead then
=     kkkkkk            kkkk
:       goto continue
=       kkkk
:     else
=     kkkk
:       print("out of \"range\"", tostring(enemy))
=       bbbbb ssssssssssssssssss  bbbbbbbb
:     end
=     kkk
:     ::continue::
:   end
=   kkk
:   repeat
=   kkkkkk
:     self.heat = (self.heat or 0) - 1
=     bbbb         bbbb      kk n    n
:   until self.heat <= 0
=   kkkkk bbbb         n
:   while self.busy do self:step {} end
=   kkkkk bbbb      kk bbbb         kkk
:   return self.target ~= nil
=   kkkkkk bbbb           bbb
: end
= kkk
:
: local ok, problem = pcall(function() error("broken") end)
= kkkkk               bbbbb kkkkkkkk   bbbbb ssssssss  kkk
: for key, value in pairs(Tower) do
= kkk            kk bbbbb        kk
:   if type(value) == "function" then require ("debug").hook(key) end
=   kk bbbb           ssssssssss kkkk bbbbbbb  sssssss  ffff      kkk
: end
= kkk
: return { Tower = Tower, on = true, off = false }
= kkkkkk                       bbbb        bbbbb
:
