#!/usr/bin/env lua
-- A tower that shoots at what comes near.
local Tower = {}
Tower.__index = Tower

--[[ Ranges are in tiles.
     "quoted", 42 and function() are only words here. ]]
local RANGE, MASK = 12.5, 0xff
local SLOW = 1e-3

local help = [[
tower 'name'   -- not a comment
tower "other"
]]

function Tower.new(name, x, y)
  local self = setmetatable({}, Tower)
  self.name = name or 'tower \'one\''
  self.x, self.y = x, y
  self.targets = nil
  return self
end

function Tower:aim(enemies)
  for index, enemy in ipairs(enemies) do
    local dx, dy = enemy.x - self.x, enemy.y - self.y
    if dx * dx + dy * dy <= RANGE ^ 2 and not enemy.dead then
      self.target = enemy
      break
    elseif enemy.dead then
      goto continue
    else
      print("out of \"range\"", tostring(enemy))
    end
    ::continue::
  end
  repeat
    self.heat = (self.heat or 0) - 1
  until self.heat <= 0
  while self.busy do self:step {} end
  return self.target ~= nil
end

local ok, problem = pcall(function() error("broken") end)
for key, value in pairs(Tower) do
  if type(value) == "function" then require ("debug").hook(key) end
end
return { Tower = Tower, on = true, off = false }
