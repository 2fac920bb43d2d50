: #!/usr/bin/env ruby
= ccccccccccccccccccc
: # frozen_string_literal: true
= ccccccccccccccccccccccccccccc
: require 'json'
= kkkkkkk ssssss
: require_relative "plants"
= kkkkkkkkkkkkkkkk ssssssss
:
: =begin
= ccccccc
: A garden has beds.
= ccccccccccccccccccc
:   "nothing" in :here is coloured.
= cccccccccccccccccccccccccccccccccc
: =end
= cccc
: module Garden
= kkkkkk tttttt
:   MAX_BEDS = 1_2
=   tttttttt   nnn
:   SIZES = { small: 0x0A, :wide => 2.5e1, deep: 0b11 }.freeze
=   ttttt            nnnn  vvvvv    nnnnn        nnnn
:
:   class Bed < Struct.new(:name, :plants)
=   kkkkk ttt   tttttt fff vvvvv  vvvvvvv
:     include Comparable
=     kkkkkkk tttttttttt
:     attr_reader :name, :soil
=     kkkkkkkkkkk vvvvv  vvvvv
:     attr_accessor :water
=     kkkkkkkkkkkkk vvvvvv
:
:     @@count = 0
=     vvvvvvv   n
:     $verbose = false
=     vvvvvvvv   bbbbb
:
:     def initialize(name, soil: nil)
=     kkk ffffffffff             bbb
:       super(name, [])
=       bbbbb
:       @name = name
=       vvvvv
:       @@count += 1
=       vvvvvvv    n
:       raise ArgumentError, "no name for #{self.class}" if name.nil? || name.empty?
=       kkkkk ttttttttttttt           kkk cccccccccccccccccccccccccccccccccccccccccc
:     end
=     kkk
:
:     def <=>(other)
=     kkk
:       @name <=> other.name
=       vvvvv
:     end
=     kkk
:
:     def dry?
=     kkk
:       return true unless defined?(@water) && @water > 0
=       kkkkkk bbbb kkkkkk kkkkkkk  vvvvvv     vvvvvv   n
:       puts 'it\'s wet'
=       kkkk sssssssssss
:     end
=     kkk
:
:     def describe
=     kkk
:       text = <<~"TEXT"
=              ssssssssss
:         Bed #{@name} # not a comment
= sssssssssssssssssssssssssssssssssssss
:         has "#{plants.size}" plants
= ssssssssssssssssssssssssssssssssssss
:       TEXT
= ssssssssss
:       plants.each do |plant|
=                   kk
:         text << plant.to_s.gsub(/a/, "b") unless plant == :weed
=                            ffff      sss  kkkkkk          vvvvv
:       end
=       kkk
:       text
:     rescue StandardError => error
=     kkkkkk ttttttttttttt
:       warn(error.message) and retry
=       ffff                kkk kkkkk
:     ensure
=     kkkkkk
:       yield text if block_given?
=       kkkkk      kk
:     end
=     kkk
:   end
=   kkk
:
:   private
=   kkkkkkk
:
:   define_method :grow! do |by = 1|
=                 vvvvvv kk       n
:     while by > 0 do by -= 1 end
=     kkkkk      n kk       n kkk
:     lambda { |x| x && #{lost} }
=     kkkkkk            ccccccccc
:   end
=   kkk
:   __method__
=   bbbbbbbbbb
: end
= kkk
:
