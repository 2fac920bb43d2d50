#!/usr/bin/env ruby
# frozen_string_literal: true
require 'json'
require_relative "plants"

=begin
A garden has beds.
  "nothing" in :here is coloured.
=end
module Garden
  MAX_BEDS = 1_2
  SIZES = { small: 0x0A, :wide => 2.5e1, deep: 0b11 }.freeze

  class Bed < Struct.new(:name, :plants)
    include Comparable
    attr_reader :name, :soil
    attr_accessor :water

    @@count = 0
    $verbose = false

    def initialize(name, soil: nil)
      super(name, [])
      @name = name
      @@count += 1
      raise ArgumentError, "no name for #{self.class}" if name.nil? || name.empty?
    end

    def <=>(other)
      @name <=> other.name
    end

    def dry?
      return true unless defined?(@water) && @water > 0
      puts 'it\'s wet'
    end

    def describe
      text = <<~"TEXT"
        Bed #{@name} # not a comment
        has "#{plants.size}" plants
      TEXT
      plants.each do |plant|
        text << plant.to_s.gsub(/a/, "b") unless plant == :weed
      end
      text
    rescue StandardError => error
      warn(error.message) and retry
    ensure
      yield text if block_given?
    end
  end

  private

  define_method :grow! do |by = 1|
    while by > 0 do by -= 1 end
    lambda { |x| x && #{lost} }
  end
  __method__
end
